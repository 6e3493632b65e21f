// SPDX-License-Identifier: GPL-3.0-or-later
//
// Adds an entry made by hand, or corrects one. It edits values of its own, and only 保存 gives them to the
// model. Open while the model has a draft; the main window makes one for each draft.
#pragma once

#include "app/ManualDraft.h"
#include "ui/controls/Sheet.h"
#include "ui/controls/TagChip.h"
#include "ui/parts/KeyedRows.h"

#include <optional>

class QLineEdit;

namespace kestu {

class AppModel;
class CategoryPicker;
class Composition;
class DateTimeField;
class FormSection;
struct WallTime;
class TextLabel;

class ManualEntrySheet final : public Sheet {
    Q_OBJECT

public:
    /// The model must have a draft.
    ManualEntrySheet(QWidget* host, AppModel& model);

    [[nodiscard]] const QUuid& draftId() const { return m_draft.id; }
    [[nodiscard]] bool holdsDraft() const override;

private:
    [[nodiscard]] FormSection* makeTimes();
    [[nodiscard]] FormSection* makeContent();
    [[nodiscard]] QWidget* makeTags();
    [[nodiscard]] TagChip::Look lookOf(TagId id) const;
    [[nodiscard]] TagChip* makeChip(TagId id);
    [[nodiscard]] CategoryPicker* makeProjects();
    void showProjects();
    void showTags();
    [[nodiscard]] QString objectionTo(const WallTime& time) const;
    [[nodiscard]] Instant instantIn(const WallTime& time, Instant former) const;
    [[nodiscard]] Instant shownEnd() const;
    void dropSeconds();
    void takeStart();
    void takeEnd();
    void showTimes();
    void showWarning(Instant end);
    void refresh();
    void save();

    AppModel& m_model;
    const ManualDraft m_opened;
    ManualDraft m_draft;
    DateTimeField* m_start;
    DateTimeField* m_end;
    TextLabel* m_length;
    TextLabel* m_warning;
    QWidget* m_warningRow = nullptr;
    QLineEdit* m_title;
    Composition* m_composition;
    CategoryPicker* m_projects = nullptr;
    QWidget* m_tags = nullptr;
    std::optional<KeyedRows<TagChip>> m_chips;
    QPushButton* m_save;
};

} // namespace kestu
