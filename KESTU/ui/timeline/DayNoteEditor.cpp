// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/DayNoteEditor.h"

#include "app/AppModel.h"
#include "ui/controls/Alert.h"
#include "ui/controls/Composition.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/Texts.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace kestu {
namespace {

constexpr int sheetWidth = 520;
constexpr int partGap = 10;
constexpr int lowestText = 240;
constexpr qsizetype longestQuote = 200;
constexpr int aroundText = 200; // what else a low window has to hold

} // namespace

DayNoteEditor::DayNoteEditor(QWidget* host, AppModel& model)
    : Sheet(host, sheetWidth)
    , m_model(model)
    , m_day(dayKey(model.selectedDay(), model.calendar()))
    , m_seen(model.dayNote() ? model.dayNote()->summary : QString())
    , m_text(new QPlainTextEdit(m_seen))
    , m_composition(new Composition(m_text)) {
    setAccessibleName(QStringLiteral("この日のまとめ"));
    m_text->setAccessibleName(QStringLiteral("この日のまとめ"));
    m_text->setFont(fontOf(TextStyle::body));
    m_text->setMinimumHeight(std::clamp(host->height() - aroundText, lowestText / 2, lowestText));
    m_text->setTabChangesFocus(true);
    m_text->moveCursor(QTextCursor::End);
    content()->setSpacing(partGap);
    content()->addWidget(new TextLabel(QStringLiteral("この日のまとめ"), TextStyle::headline));
    content()->addWidget(new TextLabel(QStringLiteral("Markdown で書けます。空にして保存すると消えます。"),
                                       TextStyle::caption, ink::secondary));
    content()->addWidget(m_text);
    connect(addButton(QStringLiteral("キャンセル")), &QPushButton::clicked, this, &Sheet::cancel);
    // The text takes Return for itself, so that only Ctrl+Return comes to the default button.
    QPushButton* const save = addButton(QStringLiteral("保存"), true);
    tellKeys(*save, save->text(), Qt::CTRL | Qt::Key_Return);
    connect(save, &QPushButton::clicked, this, &DayNoteEditor::save);
    setFirstFocus(m_text);
}

bool DayNoteEditor::holdsDraft() const {
    return m_text->toPlainText() != m_seen || !m_composition->text().isEmpty();
}

/// After a failure it stays open: the text is nowhere else.
void DayNoteEditor::save() {
    m_composition->finish(); // it belongs to the text
    const AppModel::NoteSaving saving = m_model.saveDayNote(m_day, m_text->toPlainText(), m_seen);
    if (saving.isSaved) {
        close();
    } else if (saving.other) {
        askToOverwrite(*saving.other);
    }
}

void DayNoteEditor::askToOverwrite(const DailyNote& other) {
    const QString by = other.author == QStringLiteral("ai") ? QStringLiteral(" AI によって") : QString();
    const QString begin =
        other.summary.size() > longestQuote ? other.summary.left(longestQuote) + u'…' : other.summary;
    auto* question =
        Alert::confirm(parentWidget(), QStringLiteral("上書きしますか？"),
                       QStringLiteral("編集しているあいだに、この日のまとめが%"
                                      "1書き換えられました。上書きすると、次の内容は消えます。\n\n%2")
                           .arg(by, begin),
                       QStringLiteral("編集を続ける"), QStringLiteral("上書き"));
    connect(question, &Alert::agreed, this, [this, replaced = other.summary] {
        m_seen = replaced;
        save();
    });
}

} // namespace kestu
