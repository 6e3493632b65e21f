// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/NoteView.h"

#include "ui/controls/Painted.h"
#include "ui/timeline/NoteText.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocumentFragment>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace kestu {
namespace {

constexpr int lineHeight = 21;
constexpr int usualWidth = 360;

/// Only what a browser or a mail program opens: a note may have been written by another program.
bool isOpenable(const QUrl& address) {
    static const QStringList schemes = {QStringLiteral("http"), QStringLiteral("https"),
                                        QStringLiteral("mailto")};
    return address.isValid() && schemes.contains(address.scheme());
}

QTextCharFormat formatOf(const NoteSpan& span) {
    QTextCharFormat format;
    QFont font = fontOf(TextStyle::callout);
    if (span.code) {
        font.setFamilies({QStringLiteral("Noto Sans Mono CJK JP"), QStringLiteral("Noto Sans Mono")});
    }
    font.setItalic(span.italic);
    format.setFont(span.bold ? semibold(font) : font);
    const QUrl address(span.link);
    if (isOpenable(address)) {
        format.setAnchor(true);
        format.setAnchorHref(address.toString(QUrl::FullyEncoded));
        format.setToolTip(toolTipOf(span.link));
        format.setFontUnderline(true);
    }
    return format;
}

} // namespace

NoteView::NoteView(QWidget* parent)
    : QTextBrowser(parent)
    , m_measure(new QTextDocument(this)) {
    setAccessibleName(QStringLiteral("この日のまとめ"));
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setOpenLinks(false);
    setFocusPolicy(Qt::StrongFocus);
    setTextInteractionFlags(textInteractionFlags() | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setAcceptDrops(false);
    viewport()->setAutoFillBackground(false); // the card shows through
    setFont(fontOf(TextStyle::callout));
    document()->setDocumentMargin(0);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document()->setDefaultTextOption(option);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

/// The layout of a long text is slow, so a text that is there already stays untouched.
void NoteView::setNote(const QString& summary) {
    if (m_summary == summary) {
        return;
    }
    m_summary = summary;
    write(noteSpans(plainHeadings(summary)));
    moveCursor(QTextCursor::Start);
    delete m_measure;
    m_measure = document()->clone(this);
    m_measuredWidth = -1;
    updateGeometry();
}

void NoteView::write(const std::vector<NoteSpan>& spans) {
    m_links.clear();
    document()->clear();
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    QTextBlockFormat lines;
    lines.setLineHeight(lineHeight, QTextBlockFormat::FixedHeight);
    cursor.setBlockFormat(lines);
    for (const NoteSpan& span : spans) {
        const QTextCharFormat format = formatOf(span);
        const int start = cursor.position();
        cursor.insertText(span.text, format);
        if (format.isAnchor()) {
            m_links.push_back({.start = start, .end = cursor.position()});
        }
    }
    cursor.endEditBlock();
    colorLinks();
}

void NoteView::colorLinks() {
    QTextCharFormat color;
    color.setForeground(palette().color(ink::accent));
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    for (const LinkRange& link : m_links) {
        cursor.setPosition(link.start);
        cursor.setPosition(link.end, QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(color);
    }
    cursor.endEditBlock();
}

QSize NoteView::sizeHint() const {
    return {usualWidth, heightForWidth(m_measuredWidth > 0 ? m_measuredWidth : usualWidth)};
}

QSize NoteView::minimumSizeHint() const {
    return {lineHeight, lineHeight};
}

int NoteView::heightForWidth(int width) const {
    if (m_measuredWidth != width) {
        m_measuredWidth = width;
        m_measure->setTextWidth(width);
    }
    return static_cast<int>(std::ceil(m_measure->size().height()));
}

QVariant NoteView::loadResource(int, const QUrl&) {
    return {};
}

/// Plain: the colours of this screen are nothing for another program.
QMimeData* NoteView::createMimeDataFromSelection() const {
    auto* const plain = new QMimeData;
    plain->setText(textCursor().selection().toPlainText());
    return plain;
}

void NoteView::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        colorLinks();
    }
}

void NoteView::copyText(const QString& text) const {
    QGuiApplication::clipboard()->setText(text);
}

void NoteView::contextMenuEvent(QContextMenuEvent* event) {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* const copied = menu->addAction(QStringLiteral("コピー"), this, &QTextEdit::copy);
    copied->setEnabled(textCursor().hasSelection());
    if (const QString address = anchorAt(event->pos()); !address.isEmpty()) {
        menu->addAction(QStringLiteral("リンクをコピー"), this, [this, address] { copyText(address); });
    }
    menu->popup(event->globalPos());
}

/// Reached with Tab it begins at its first link, and backwards at its last one; without any it is selected
/// whole, which shows where the focus is.
void NoteView::focusInEvent(QFocusEvent* event) {
    QTextBrowser::focusInEvent(event);
    if (event->reason() != Qt::TabFocusReason && event->reason() != Qt::BacktabFocusReason) {
        return;
    }
    if (m_links.empty()) {
        selectAll();
    } else {
        focusNextPrevChild(event->reason() == Qt::TabFocusReason);
    }
}

void NoteView::focusOutEvent(QFocusEvent* event) {
    QTextBrowser::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) {
        QTextCursor cursor = textCursor();
        cursor.movePosition(QTextCursor::Start);
        setTextCursor(cursor);
    }
}

/// Nothing scrolls here; what this stands in does.
void NoteView::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace kestu
