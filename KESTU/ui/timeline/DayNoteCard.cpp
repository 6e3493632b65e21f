// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/DayNoteCard.h"

#include "app/AppModel.h"
#include "ui/controls/Badge.h"
#include "ui/controls/Painted.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/KestuStyle.h"
#include "ui/timeline/DayNoteEditor.h"
#include "ui/timeline/NoteView.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int cardPadding = 14 + 1; // and the hairline
constexpr int partGap = 8;
constexpr int iconGap = 6;

template<typename Layout>
Layout* bare(Layout* layout, int spacing) {
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

QPushButton* smallButton(const QString& text) {
    auto* button = new QPushButton(text);
    setSmall(button);
    return button;
}

IconView* noteIcon() {
    return new IconView(QStringLiteral("text.alignleft"), metrics::icon, &Colors::textSecondary);
}

} // namespace

DayNoteCard::DayNoteCard(AppModel& model)
    : m_model(model)
    , m_author(new Badge(Badge::Kind::author, {}))
    , m_text(new NoteView)
    , m_edit(smallButton(QStringLiteral("編集")))
    , m_copy(smallButton({}))
    , m_write(smallButton(QStringLiteral("自分で書く")))
    , m_row(new QBoxLayout(QBoxLayout::LeftToRight))
    , m_note(makeNote())
    , m_invitation(makeInvitation()) {
    auto* card = new Card;
    bare(new QVBoxLayout(this), 0)->addWidget(card);
    auto* inside = bare(new QVBoxLayout(card), 0);
    inside->setContentsMargins(cardPadding, cardPadding, cardPadding, cardPadding);
    inside->addWidget(m_note);
    inside->addWidget(m_invitation);
    connect(m_text, &QTextBrowser::anchorClicked, this,
            [this](const QUrl& address) { m_model.openAddress(address); });
    connect(m_copy, &QPushButton::clicked, this, &DayNoteCard::copyRequest);
    connect(m_edit, &QPushButton::clicked, this, &DayNoteCard::edit);
    connect(m_write, &QPushButton::clicked, this, &DayNoteCard::edit);
    connect(&m_model, &AppModel::dayNoteChanged, this, &DayNoteCard::refresh);
    connect(&m_model, &AppModel::selectedDayChanged, this, [this] { setCopied(false); });
    refresh();
}

QWidget* DayNoteCard::makeNote() {
    auto* note = new QWidget;
    auto* column = bare(new QVBoxLayout(note), partGap);
    auto* header = bare(new QHBoxLayout, partGap);
    auto* title = bare(new QHBoxLayout, iconGap);
    title->addWidget(noteIcon());
    title->addWidget(new TextLabel(QStringLiteral("この日のまとめ"), TextStyle::headline));
    header->addLayout(title);
    header->addWidget(m_author);
    header->addStretch();
    header->addWidget(m_edit);
    column->addLayout(header);
    column->addWidget(m_text);
    return note;
}

QWidget* DayNoteCard::makeInvitation() {
    setCopied(false);
    auto* invitation = new QWidget;
    invitation->setLayout(bare(m_row, partGap));
    auto* words = bare(new QHBoxLayout, partGap);
    words->addWidget(noteIcon());
    auto* text = new TextLabel(QStringLiteral("この日のまとめはまだありません"), TextStyle::callout,
                               ink::secondary, Overflow::elideRight);
    text->setMinimumWidth(1); // so that nothing keeps the row from becoming too narrow for it
    words->addWidget(text, 1);
    m_row->addLayout(words); // no stretch: below each other it would make the card grow
    m_row->addLayout(makeButtons());
    m_rowWidth = m_row->sizeHint().width(); // with the longer text of its button
    return invitation;
}

QHBoxLayout* DayNoteCard::makeButtons() {
    setHelp(*m_copy,
            QStringLiteral("KESTUの MCP をつないだ Claude に貼り付けると、まとめを書いて保存してくれます"));
    auto* buttons = bare(new QHBoxLayout, partGap);
    buttons->addStretch();
    buttons->addWidget(m_copy);
    buttons->addWidget(m_write);
    return buttons;
}

/// Where the text would be cut off, the buttons stand below it.
void DayNoteCard::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const bool fits = width() - 2 * cardPadding >= m_rowWidth;
    m_row->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

/// What goes is hidden first, for showing a widget lays out at once.
void DayNoteCard::refresh() {
    const auto& note = m_model.dayNote();
    if (note) {
        m_author->setText(note->author == QStringLiteral("ai") ? QStringLiteral("AI")
                                                               : QStringLiteral("自分"));
        m_text->setNote(note->summary);
    }
    (note ? m_invitation : m_note)->hide();
    (note ? m_note : m_invitation)->show();
}

void DayNoteCard::setCopied(bool copied) {
    m_copy->setText(copied ? QStringLiteral("コピーしました") : QStringLiteral("Claude に頼む文面をコピー"));
}

void DayNoteCard::copyRequest() {
    QGuiApplication::clipboard()->setText(m_model.summaryRequest());
    setCopied(true);
}

void DayNoteCard::edit() {
    if (m_editor) {
        return;
    }
    m_editor = new DayNoteEditor(window(), m_model);
    connect(m_editor, &Sheet::closed, this, &DayNoteCard::focusButton);
    m_editor->present();
}

/// The button that opened the editor may be gone with the note, or since there is one.
void DayNoteCard::focusButton() {
    m_editor = nullptr; // it goes later
    (m_model.dayNote() ? m_edit : m_write)->setFocus(Qt::OtherFocusReason);
}

} // namespace kestu
