// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/parts/CategoryPicker.h"

#include "app/AppModel.h"
#include "ui/controls/Painted.h"

#include <QHelpEvent>
#include <QStyleOptionComboBox>
#include <QToolTip>

namespace kestu {

CategoryPicker::CategoryPicker(Divider divider, QWidget* parent)
    : Picker(parent)
    , m_divider(divider) {
    setPlaceholderText(QStringLiteral("未分類"));
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon); // long names give way
    setMinimumContentsLength(1);
}

std::optional<RowId> CategoryPicker::chosen() const {
    const QVariant id = currentData();
    return id.isValid() ? std::optional(id.value<RowId>()) : std::nullopt;
}

void CategoryPicker::showCategories(const QString& first, const AppModel& model, CategoryKind kind,
                                    std::optional<RowId> chosen) {
    showEntries(entriesOf(first, model, kind));
    setCurrentIndex(chosen ? findData(QVariant::fromValue(*chosen)) : 0);
}

bool CategoryPicker::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QComboBox::event(event);
    }
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QRect room =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    const bool isElided = widthOf(currentText(), font()) > room.width();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                       isElided ? toolTipOf(currentText()) : QString(), this);
    return true;
}

/// Behind the first, one without an id is the divider.
std::vector<CategoryPicker::Entry> CategoryPicker::entriesOf(const QString& first, const AppModel& model,
                                                             CategoryKind kind) const {
    std::vector<Entry> entries{{.text = first, .id = {}}};
    const auto append = [&](const auto& categories) {
        if (m_divider == Divider::afterFirst && !categories.empty()) {
            entries.push_back({.text = {}, .id = {}});
        }
        for (const auto& category : categories) {
            entries.push_back({.text = category.name, .id = QVariant::fromValue(category.id)});
        }
    };
    if (kind == CategoryKind::project) {
        append(model.projects());
    } else {
        append(model.tags());
    }
    return entries;
}

/// Row by row: an open menu stays, and so does what its pointer is on.
void CategoryPicker::showEntries(const std::vector<Entry>& entries) {
    const int wanted = static_cast<int>(entries.size());
    while (count() > wanted) {
        removeItem(count() - 1);
    }
    for (int row = 0; row < wanted; ++row) {
        const auto& [text, id] = entries[static_cast<std::size_t>(row)];
        if (row == count()) {
            if (row > 0 && !id.isValid()) {
                insertSeparator(row);
            } else {
                addItem(text, id);
            }
            continue;
        }
        if (itemText(row) != text) {
            setItemText(row, text);
        }
        if (itemData(row) != id) {
            setItemData(row, id);
        }
    }
}

} // namespace kestu
