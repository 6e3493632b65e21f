// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/SettingsScreen.h"

#include "app/AppModel.h"
#include "ui/controls/FormSection.h"
#include "ui/controls/TextLabel.h"
#include "ui/controls/TightLayout.h"
#include "ui/settings/AssistantSection.h"
#include "ui/settings/ExcludedAppsSection.h"
#include "ui/settings/PermissionSection.h"
#include "ui/settings/RecordingSection.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace kestu {
namespace {

constexpr int padding = 24;
constexpr int sectionGap = 24;
constexpr int widest = 720;
constexpr int pathGap = 12;

FormSection* makeDataSection(AppModel& model) {
    auto* section = new FormSection(QStringLiteral("データ"), Card::Kind::outer);
    section->addRow(new TextLabel(model.words().dataNote, TextStyle::callout, ink::primary, Overflow::wrap));
    auto* open = new QPushButton(QStringLiteral("保存場所を開く"));
    auto* path = new TextLabel(model.dataFolder(), TextStyle::caption, ink::secondary, Overflow::elideMiddle);
    path->setCopyable(true);
    auto* place = new QWidget;
    auto* layout = tight<QHBoxLayout>(place, pathGap);
    layout->addWidget(open);
    layout->addWidget(path);
    layout->addStretch(1);
    section->addRow(place);
    QObject::connect(open, &QPushButton::clicked, &model, &AppModel::openDataFolder);
    return section;
}

QWidget* makeSections(AppModel& model) {
    auto* sections = new QWidget;
    sections->setMaximumWidth(widest);
    auto* column = tight<QVBoxLayout>(sections, sectionGap);
    column->addWidget(makeRecordingSection(model));
    column->addWidget(new ExcludedAppsSection(model));
    column->addWidget(makePermissionSection(model));
    column->addWidget(new AssistantSection(model));
    column->addWidget(makeDataSection(model));
    column->addStretch(1);
    return sections;
}

} // namespace

SettingsScreen::SettingsScreen(AppModel& model) {
    auto* content = new QWidget;
    auto* layout = new QHBoxLayout(content);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(0);
    layout->addWidget(makeSections(model), widest); // all of the width until it has enough
    layout->addStretch(1);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidget(content);
}

} // namespace kestu
