// SPDX-License-Identifier: GPL-3.0-or-later
//
// Writes the note of a day: of the one that was selected when it was opened, also when another is selected
// meanwhile. It edits a text of its own, so that nothing that happens to the model changes what is being
// written. Made and presented by DayNoteCard.
#pragma once

#include "ui/controls/Sheet.h"

class QPlainTextEdit;

namespace kestu {

class AppModel;
class Composition;
struct DailyNote;

class DayNoteEditor final : public Sheet {
    Q_OBJECT

public:
    DayNoteEditor(QWidget* host, AppModel& model);

    [[nodiscard]] bool holdsDraft() const override;

private:
    void save();
    void askToOverwrite(const DailyNote& other);

    AppModel& m_model;
    QString m_day;
    QString m_seen; // the stored note that this one may replace
    QPlainTextEdit* m_text;
    Composition* m_composition;
};

} // namespace kestu
