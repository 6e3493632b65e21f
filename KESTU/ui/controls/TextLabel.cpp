// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/TextLabel.h"

#include "ui/controls/Painted.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMenu>
#include <QPainter>
#include <QTextLayout>
#include <QToolTip>
#include <cmath>

namespace kestu {
namespace {

constexpr int unbounded = QWIDGETSIZE_MAX;
constexpr int widestHint = 360;    // of a wrapping text that nobody gave a width
constexpr int narrowestLetter = 2; // pixels
constexpr int narrowest = 28;      // what is left of a name that gives way

void layOut(QTextLayout& layout, int width, bool wrap, Qt::Alignment alignment) {
    QTextOption option(alignment & Qt::AlignHorizontal_Mask);
    option.setWrapMode(wrap ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::ManualWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    qreal y = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max(width, 1));
        line.setPosition({0, y});
        y += std::ceil(line.height());
    }
    layout.endLayout();
}

QString inLines(QString text) {
    return text.replace(u'\n', QChar::LineSeparator);
}

QString inOneLine(QString text) {
    return text.replace(u'\n', u' ').replace(QChar::LineSeparator, u' ');
}

} // namespace

TextLabel::TextLabel(const QString& text, TextStyle style, QPalette::ColorRole color, Overflow overflow,
                     QWidget* parent)
    : QLabel(parent)
    , m_overflow(overflow) {
    setTextFormat(Qt::PlainText);
    setFont(fontOf(style));
    setForegroundRole(color);
    setWordWrap(wraps());
    setText(text);
}

void TextLabel::setCopyable(bool copyable) {
    m_copyable = copyable;
    setFocusPolicy(copyable ? Qt::StrongFocus : Qt::NoFocus);
    setCursor(copyable ? Qt::IBeamCursor : Qt::ArrowCursor);
}

void TextLabel::setMaximumLines(int lines) {
    m_maximumLines = lines;
    updateGeometry();
    update();
}

QString TextLabel::shownText(int width) const {
    if (m_overflow == Overflow::whole) {
        return inLines(text());
    }
    if (!wraps()) {
        const auto mode = m_overflow == Overflow::elideMiddle ? Qt::ElideMiddle : Qt::ElideRight;
        return elided(inOneLine(text()), font(), mode, width);
    }
    QString whole = inLines(text());
    if (m_maximumLines <= 0) {
        return whole;
    }
    // More than fits is not laid out: some titles are as long as a page.
    whole.truncate(static_cast<qsizetype>(width / narrowestLetter + 1) * m_maximumLines + 1);
    QTextLayout layout(whole, font());
    layOut(layout, width, true, alignment());
    if (layout.lineCount() <= m_maximumLines) {
        return whole;
    }
    const int lastLine = layout.lineAt(m_maximumLines - 1).textStart();
    return whole.left(lastLine) + elided(inOneLine(whole.mid(lastLine)), font(), Qt::ElideRight, width);
}

bool TextLabel::isElided() const {
    const QString shown = shownText(contentsRect().width());
    return shown != (wraps() || m_overflow == Overflow::whole ? inLines(text()) : inOneLine(text()));
}

QSize TextLabel::textSize(int width) const {
    QTextLayout layout(shownText(width), font());
    layOut(layout, width, wraps(), Qt::AlignLeft);
    qreal widest = 0;
    for (int index = 0; index < layout.lineCount(); ++index) {
        widest = std::max(widest, layout.lineAt(index).naturalTextWidth());
    }
    const QTextLine last = layout.lineAt(layout.lineCount() - 1);
    const qreal height = last.isValid() ? last.y() + std::ceil(last.height()) : QFontMetrics(font()).height();
    return {static_cast<int>(std::ceil(widest)), static_cast<int>(height)};
}

QSize TextLabel::framed(QSize text) const {
    const QMargins margins = contentsMargins();
    return text.grownBy(margins);
}

QSize TextLabel::sizeHint() const {
    const QSize natural = textSize(unbounded);
    return framed(wraps() && natural.width() > widestHint ? textSize(widestHint) : natural);
}

QSize TextLabel::minimumSizeHint() const {
    if (m_overflow == Overflow::whole) {
        return sizeHint();
    }
    const QSize natural = textSize(unbounded);
    const int line = QFontMetrics(font()).height();
    return framed({std::min(natural.width(), narrowest), wraps() ? line : natural.height()});
}

int TextLabel::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    const int inner = width - margins.left() - margins.right();
    return wraps() ? framed(textSize(inner)).height() : -1;
}

void TextLabel::paintEvent(QPaintEvent*) {
    const QRect box = contentsRect();
    QTextLayout layout(shownText(box.width()), font());
    layOut(layout, box.width(), wraps(), alignment());
    const QTextLine last = layout.lineAt(layout.lineCount() - 1);
    const qreal free = last.isValid() ? box.height() - last.y() - std::ceil(last.height()) : 0;
    const qreal above = alignment() & Qt::AlignTop ? 0 : std::floor(std::max<qreal>(free, 0) / 2);
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    QList<QTextLayout::FormatRange> selections;
    if (m_anchor != m_end) {
        QTextLayout::FormatRange range;
        range.start = std::min(m_anchor, m_end);
        range.length = std::abs(m_anchor - m_end);
        range.format.setBackground(colorsOf(palette()).textSelection);
        selections.append(range);
    }
    layout.draw(&painter, QPointF(box.left(), box.top() + above), selections);
}

bool TextLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || !isElided()) {
        return QLabel::event(event);
    }
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipOf(text()), this);
    return true;
}

int TextLabel::positionAt(QPoint point) const {
    const QRect box = contentsRect();
    QTextLayout layout(shownText(box.width()), font());
    layOut(layout, box.width(), wraps(), alignment());
    for (int index = 0; index < layout.lineCount(); ++index) {
        const QTextLine line = layout.lineAt(index);
        if (point.y() - box.top() < line.y() + line.height() || index == layout.lineCount() - 1) {
            return line.xToCursor(point.x() - box.left());
        }
    }
    return 0;
}

void TextLabel::select(int anchor, int end) {
    m_anchor = anchor;
    m_end = end;
    update();
}

void TextLabel::mousePressEvent(QMouseEvent* event) {
    if (!m_copyable || event->button() != Qt::LeftButton) {
        QLabel::mousePressEvent(event);
        return;
    }
    const int at = positionAt(event->pos());
    select(at, at);
}

void TextLabel::mouseMoveEvent(QMouseEvent* event) {
    if (m_copyable && event->buttons() & Qt::LeftButton) {
        select(m_anchor, positionAt(event->pos()));
    }
}

void TextLabel::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!m_copyable) {
        QLabel::mouseDoubleClickEvent(event);
        return;
    }
    selectAll();
}

void TextLabel::selectAll() {
    select(0, static_cast<int>(shownText(contentsRect().width()).size()));
}

void TextLabel::copy() const {
    const bool part = m_anchor != m_end && !isElided();
    const QString copied = part ? text().mid(std::min(m_anchor, m_end), std::abs(m_anchor - m_end)) : text();
    QGuiApplication::clipboard()->setText(copied);
}

void TextLabel::keyPressEvent(QKeyEvent* event) {
    if (m_copyable && event->matches(QKeySequence::Copy)) {
        copy();
        return;
    }
    if (m_copyable && event->matches(QKeySequence::SelectAll)) {
        selectAll();
        return;
    }
    QLabel::keyPressEvent(event);
}

void TextLabel::contextMenuEvent(QContextMenuEvent* event) {
    if (!m_copyable) {
        QLabel::contextMenuEvent(event);
        return;
    }
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("コピー"), this, [this] { copy(); });
    menu->popup(event->globalPos());
}

/// The selection shows where the focus is, and what will be copied.
void TextLabel::focusInEvent(QFocusEvent* event) {
    QLabel::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) {
        selectAll();
    }
}

void TextLabel::focusOutEvent(QFocusEvent* event) {
    QLabel::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) {
        select(0, 0);
    }
}

} // namespace kestu
