// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/SettingsScreen.h"

#include "app/AppModel.h"
#include "ui/controls/FormSection.h"
#include "ui/controls/TextLabel.h"
#include "ui/settings/AssistantSection.h"
#include "ui/settings/ExcludedAppsSection.h"
#include "ui/settings/RecordingSection.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace kestu {
namespace {

constexpr int padding = 24;
constexpr int sectionGap = 24;
constexpr int widest = 720;
constexpr int iconGap = 6;
constexpr int pathGap = 12;

template<typename Layout>
Layout* tight(QWidget* owner, int spacing) {
    auto* layout = new Layout(owner);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

QWidget* makeGranted() {
    auto* granted = new QWidget;
    auto* layout = tight<QHBoxLayout>(granted, iconGap);
    layout->addWidget(new IconView(QStringLiteral("checkmark.circle.fill"), metrics::icon, &Colors::green));
    layout->addWidget(new TextLabel(QStringLiteral("許可済み")));
    return granted;
}

/// What is granted, or the way to grant it.
QWidget* makePermission(AppModel& model) {
    auto* permission = new QWidget;
    auto* layout = tight<QHBoxLayout>(permission, 0);
    QWidget* granted = makeGranted();
    auto* settings = new QPushButton(QStringLiteral("システム設定を開く"));
    layout->addWidget(granted);
    layout->addWidget(settings);
    const auto refresh = [&model, granted, settings] {
        granted->setVisible(model.accessibilityGranted());
        settings->setVisible(!model.accessibilityGranted());
    };
    refresh();
    QObject::connect(&model, &AppModel::accessibilityGrantedChanged, permission, refresh);
    QObject::connect(settings, &QPushButton::clicked, &model, &AppModel::openAccessibilitySettings);
    return permission;
}

FormSection* makePermissionSection(AppModel& model) {
    auto* section = new FormSection(QStringLiteral("許可"), Card::Kind::outer);
    section->addRow(QStringLiteral("アクセシビリティ（ウィンドウ名）"), makePermission(model));
    section->addRow(
        new TextLabel(QStringLiteral("ブラウザの URL は、各ブラウザで初めて記録するときに確認が出ます。"),
                      TextStyle::caption, ink::secondary, Overflow::wrap));
    return section;
}

FormSection* makeDataSection(AppModel& model) {
    auto* section = new FormSection(QStringLiteral("データ"), Card::Kind::outer);
    section->addRow(new TextLabel(
        QStringLiteral(
            "記録はこの Mac の中（~/Library/Application Support/KESTU）に保存されます。外部に送られるのは、"
            "あなたが MCP でつないだ AI が読んだ分だけです。"),
        TextStyle::callout, ink::primary, Overflow::wrap));
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
