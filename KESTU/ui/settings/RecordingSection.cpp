// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/RecordingSection.h"

#include "app/AppModel.h"
#include "ui/controls/FormSection.h"
#include "ui/controls/Stepper.h"
#include "ui/controls/SwitchButton.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/Texts.h"

#include <QHBoxLayout>

namespace kestu {
namespace {

constexpr int shortestIdle = 1; // minutes
constexpr int longestIdle = 30;
constexpr int controlGap = 12;

/// One value of the model as a switch.
struct Toggle {
    bool (AppModel::*value)() const;
    void (AppModel::*changed)();
    void (*change)(AppModel& model, bool on);
};

constexpr Toggle tracking{
    .value = &AppModel::isTracking,
    .changed = &AppModel::isTrackingChanged,
    .change =
        [](AppModel& model, bool on) {
            if (on != model.isTracking()) {
                model.toggleTracking();
            }
        },
};
constexpr Toggle keepAlive{
    .value = &AppModel::keepAliveEnabled,
    .changed = &AppModel::keepAliveEnabledChanged,
    .change = [](AppModel& model, bool on) { model.setKeepAliveEnabled(on); },
};
constexpr Toggle atLogin{
    .value = &AppModel::launchAtLogin,
    .changed = &AppModel::launchAtLoginChanged,
    .change = [](AppModel& model, bool on) { model.setLaunchAtLogin(on); },
};

QWidget* makeRow(QWidget* label, QWidget* control) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(controlGap);
    layout->addWidget(label, 1);
    layout->addWidget(control);
    return row;
}

SwitchButton* makeSwitch(AppModel& model, const Toggle& toggle, TextLabel* label) {
    auto* made = new SwitchButton(label->text());
    made->setLabel(label);
    const auto refresh = [&model, &toggle, made] { made->setChecked((model.*toggle.value)()); };
    refresh();
    QObject::connect(&model, toggle.changed, made, refresh);
    QObject::connect(made, &QAbstractButton::clicked, &model, [&model, &toggle, refresh](bool on) {
        toggle.change(model, on);
        refresh(); // the model has the last word, also when it changed nothing
    });
    return made;
}

QWidget* makeSwitchRow(AppModel& model, const Toggle& toggle, const QString& text) {
    auto* label = new TextLabel(text, TextStyle::callout, ink::primary, Overflow::wrap);
    return makeRow(label, makeSwitch(model, toggle, label));
}

QWidget* makeTexts(TextLabel* label, TextLabel* note) {
    auto* texts = new QWidget;
    auto* column = new QVBoxLayout(texts);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(label);
    column->addWidget(note);
    return texts;
}

/// The switch says what is wanted; what cannot be had is said below it.
QWidget* makeTrackingRow(AppModel& model) {
    auto* label = new TextLabel(QStringLiteral("記録する"), TextStyle::callout, ink::primary, Overflow::wrap);
    auto* note = new TextLabel({}, TextStyle::caption, ink::orange, Overflow::wrap);
    QWidget* row = makeRow(makeTexts(label, note), makeSwitch(model, tracking, label));
    const auto refresh = [&model, note] {
        const QString& warning = model.words().warning;
        const QString unseen = trackingStateText(model) + QStringLiteral("：") + warning;
        note->setText(!model.isTracking() || seesAll(model) ? QString()
                      : model.whyUnseen().isEmpty()         ? warning
                                                            : unseen);
        note->setHidden(note->text().isEmpty());
    };
    for (const auto signal :
         {&AppModel::isTrackingChanged, &AppModel::whyUnseenChanged, &AppModel::abilitiesChanged}) {
        QObject::connect(&model, signal, note, refresh);
    }
    refresh();
    return row;
}

QWidget* makeKeepAliveRow(AppModel& model) {
    auto* label = new TextLabel(QStringLiteral("会議・動画のあいだは、操作がなくても記録する"),
                                TextStyle::callout, ink::primary, Overflow::wrap);
    auto* note = new TextLabel(
        QStringLiteral("Zoom・Teams・FaceTime・動画アプリ、YouTube "
                       "などのサイト、動画を再生しているアプリが対象。3時間操作がなければ止めます。"),
        TextStyle::caption, ink::secondary, Overflow::wrap);
    SwitchButton* control = makeSwitch(model, keepAlive, note);
    control->setLabel(label); // the name; the note switches, too
    control->setAccessibleDescription(note->text());
    return makeRow(makeTexts(label, note), control);
}

QWidget* makeIdleRow(AppModel& model) {
    auto* label = new TextLabel({}, TextStyle::callout, ink::primary, Overflow::wrap);
    auto* stepper = new Stepper(QStringLiteral("何もしていないとみなすまでの時間"), QStringLiteral("分"),
                                shortestIdle, longestIdle);
    const auto refresh = [&model, label, stepper] {
        label->setText(
            QStringLiteral("%1分 操作がなければ「何もしていない」とみなす").arg(model.idleMinutes()));
        stepper->setValue(model.idleMinutes());
    };
    refresh();
    QObject::connect(&model, &AppModel::idleMinutesChanged, stepper, refresh);
    QObject::connect(stepper, &Stepper::stepped, &model, &AppModel::setIdleMinutes);
    return makeRow(label, stepper);
}

} // namespace

FormSection* makeRecordingSection(AppModel& model) {
    auto* section = new FormSection(QStringLiteral("記録"), Card::Kind::outer);
    section->addRow(makeTrackingRow(model));
    section->addRow(makeIdleRow(model));
    section->addRow(makeKeepAliveRow(model));
    section->addRow(makeSwitchRow(model, atLogin, QStringLiteral("ログイン時に起動")));
    return section;
}

} // namespace kestu
