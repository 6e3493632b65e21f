// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/ExcludedAppsSection.h"

#include "app/AppModel.h"
#include "ui/controls/FormSection.h"
#include "ui/controls/TextLabel.h"
#include "ui/settings/AppPicker.h"
#include "ui/theme/KestuStyle.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QSet>

#include <iterator>

namespace kestu {
namespace {

constexpr int pickerWidth = 180;
constexpr int nameGap = 8;

} // namespace

ExcludedAppsSection::ExcludedAppsSection(AppModel& model)
    : m_model(model)
    , m_section(new FormSection(QStringLiteral("記録しないアプリ"), Card::Kind::outer))
    , m_none(m_section->addRow(new TextLabel(QStringLiteral("なし"), TextStyle::callout, ink::secondary)))
    , m_picker(new AppPicker) {
    m_picker->setFixedWidth(pickerWidth);
    m_section->addRow(QStringLiteral("今日使ったアプリから追加"), m_picker);
    m_section->setFooter(QStringLiteral(
        "パスワード管理やメッセージなど、記録に残したくないアプリ。前面にあるあいだは何も記録しま"
        "せん（過去の記録はそのまま）。"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_section);
    connect(m_picker, &AppPicker::picked, &m_model, &AppModel::excludeApp);
    connect(&m_model, &AppModel::excludedAppsChanged, this, &ExcludedAppsSection::refreshRows);
    connect(&m_model, &AppModel::excludedAppsChanged, this, &ExcludedAppsSection::refreshPicker);
    connect(&m_model, &AppModel::dayItemsChanged, this, &ExcludedAppsSection::refreshPicker);
    refreshRows();
    refreshPicker();
}

void ExcludedAppsSection::refreshRows() {
    QSet<App> wanted;
    const auto& excluded = m_model.excludedApps();
    for (auto app = excluded.begin(); app != excluded.end(); ++app) {
        wanted.insert({app.value(), app.key()});
    }
    for (auto row = m_rows.begin(); row != m_rows.end();) {
        if (wanted.remove(row.key())) {
            ++row;
        } else {
            m_section->removeRow(row.value());
            row = m_rows.erase(row);
        }
    }
    for (const App& app : wanted) { // what is left has no row yet
        const auto row = m_rows.insert(app, nullptr);
        const auto index = static_cast<int>(std::distance(m_rows.begin(), row));
        *row = m_section->insertRow(index, makeRow(app));
    }
    m_none->setVisible(m_rows.isEmpty());
    orderTabs();
}

/// Whatever was made first: from the top down, and the picker below them last.
void ExcludedAppsSection::orderTabs() {
    QWidget* next = m_picker;
    const QList<QWidget*> rows = m_rows.values();
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        auto* button = (*row)->findChild<QPushButton*>();
        QWidget::setTabOrder(button, next);
        next = button;
    }
}

QWidget* ExcludedAppsSection::makeRow(const App& app) {
    const auto& [name, bundleId] = app;
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(nameGap);
    layout->addWidget(new TextLabel(name, TextStyle::callout, ink::primary, Overflow::elideRight));
    layout->addWidget(new TextLabel(bundleId, TextStyle::caption, ink::tertiary, Overflow::elideRight));
    layout->addStretch(1);
    auto* remove = new QPushButton(QStringLiteral("外す"));
    setSmall(remove);
    setOnce(remove);
    remove->setAccessibleDescription(name);
    layout->addWidget(remove);
    connect(remove, &QPushButton::clicked, &m_model, [this, id = bundleId] { m_model.includeApp(id); });
    return row;
}

void ExcludedAppsSection::refreshPicker() {
    QMap<QString, QString> apps = m_model.recordedApps();
    for (const QString& excluded : m_model.excludedApps().keys()) {
        apps.remove(excluded);
    }
    m_picker->setApps(apps);
}

} // namespace kestu
