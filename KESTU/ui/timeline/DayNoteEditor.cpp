// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/DayNoteEditor.h"

#include "app/AppModel.h"
#include "ui/controls/TextLabel.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QInputMethod>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace kestu {
namespace {

constexpr int sheetWidth = 520;
constexpr int partGap = 10;
constexpr int lowestText = 240;
constexpr int aroundText = 200; // what else a low window has to hold

} // namespace

DayNoteEditor::DayNoteEditor(QWidget* host, AppModel& model)
    : Sheet(host, sheetWidth)
    , m_model(model)
    , m_day(dayKey(model.selectedDay(), model.calendar()))
    , m_text(new QPlainTextEdit(model.dayNote() ? model.dayNote()->summary : QString())) {
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
    connect(addButton(QStringLiteral("保存"), true), &QPushButton::clicked, this, &DayNoteEditor::save);
    setFirstFocus(m_text);
}

/// After a failure it stays open: the text is nowhere else.
void DayNoteEditor::save() {
    QGuiApplication::inputMethod()->commit(); // what is still being composed belongs to the text
    if (m_model.saveDayNote(m_day, m_text->toPlainText())) {
        close();
    }
}

} // namespace kestu
