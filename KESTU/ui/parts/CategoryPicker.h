// SPDX-License-Identifier: GPL-3.0-or-later
//
// A picker of one project or tag, or of what stands first instead. It follows the list without closing its
// menu. It belongs to its parent widget; `activated` tells that the user chose.
#pragma once

#include "storage/Records.h"
#include "ui/controls/Picker.h"

#include <optional>
#include <vector>

namespace kestu {

class AppModel;

class CategoryPicker final : public Picker {
    Q_OBJECT

public:
    enum class Divider { none, afterFirst };

    explicit CategoryPicker(Divider divider, QWidget* parent = nullptr);

    /// `first` stands for no id. An id that is none of the list leaves the picker at 未分類.
    void showCategories(const QString& first, const AppModel& model, CategoryKind kind,
                        std::optional<RowId> chosen);
    [[nodiscard]] std::optional<RowId> chosen() const;

protected:
    bool event(QEvent* event) override;

private:
    struct Entry {
        QString text;
        QVariant id;
    };

    [[nodiscard]] std::vector<Entry> entriesOf(const QString& first, const AppModel& model,
                                               CategoryKind kind) const;
    void showEntries(const std::vector<Entry>& entries);

    Divider m_divider;
};

} // namespace kestu
