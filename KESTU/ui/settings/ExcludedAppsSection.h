// SPDX-License-Identifier: GPL-3.0-or-later
//
// The applications that are never recorded, and how one comes among them. It belongs to its parent widget and
// follows the model: only rows that really changed come or go.
#pragma once

#include <QMap>
#include <QWidget>

#include <utility>

namespace kestu {

class AppModel;
class AppPicker;
class FormSection;

class ExcludedAppsSection final : public QWidget {
    Q_OBJECT

public:
    explicit ExcludedAppsSection(AppModel& model);

private:
    using App = std::pair<QString, QString>; // its name, then its bundle id: the order of the rows

    [[nodiscard]] QWidget* makeRow(const App& app);
    void refreshRows();
    void orderTabs();
    void refreshPicker();

    AppModel& m_model;
    FormSection* m_section;
    QMap<App, QWidget*> m_rows;
    QWidget* m_none;
    AppPicker* m_picker;
};

} // namespace kestu
