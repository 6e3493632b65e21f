// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/PermissionSection.h"

#include "app/AppModel.h"
#include "ui/controls/FormSection.h"
#include "ui/controls/TextLabel.h"
#include "ui/controls/TightLayout.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <functional>

namespace kestu {
namespace {

constexpr int iconGap = 6;
constexpr int buttonGap = 8;
constexpr int rowGap = 12;

void follow(AppModel& model, QWidget* widget, const std::function<void()>& refresh) {
    for (const auto signal : {&AppModel::abilitiesChanged, &AppModel::accessibilityGrantedChanged}) {
        QObject::connect(&model, signal, widget, refresh);
    }
    refresh();
}

QWidget* makeGranted() {
    auto* granted = new QWidget;
    auto* layout = tight<QHBoxLayout>(granted, iconGap);
    layout->addWidget(new IconView(QStringLiteral("checkmark.circle.fill"), metrics::icon, &Colors::green));
    layout->addWidget(new TextLabel(QStringLiteral("許可済み")));
    return granted;
}

/// What is granted, or the ways to grant it.
QWidget* makePermission(AppModel& model) {
    auto* permission = new QWidget;
    auto* layout = tight<QHBoxLayout>(permission, buttonGap);
    QWidget* granted = makeGranted();
    auto* allow = new QPushButton(QStringLiteral("許可する"));
    auto* settings = new QPushButton(QStringLiteral("システム設定を開く"));
    layout->addWidget(granted);
    layout->addWidget(allow);
    layout->addWidget(settings);
    follow(model, permission, [&model, granted, allow, settings] {
        const bool isGranted = model.accessibilityGranted();
        granted->setVisible(isGranted);
        allow->setVisible(!isGranted && model.abilities().windows.mayBeRequested);
        settings->setVisible(!isGranted);
    });
    QObject::connect(allow, &QPushButton::clicked, &model, &AppModel::requestAccessibility);
    QObject::connect(settings, &QPushButton::clicked, &model, &AppModel::openAccessibilitySettings);
    return permission;
}

/// How far something can be told: a sign and a word.
class AbilityView final : public QWidget {
public:
    AbilityView()
        : m_icon(new IconView({}, metrics::icon))
        , m_text(new TextLabel({})) {
        auto* layout = tight<QHBoxLayout>(this, iconGap);
        layout->addWidget(m_icon);
        layout->addWidget(m_text);
    }

    void show(Ability::Kind kind) {
        switch (kind) {
        case Ability::Kind::yes:
            m_icon->setIcon(QStringLiteral("checkmark.circle.fill"), &Colors::green);
            break;
        case Ability::Kind::partly:
            m_icon->setIcon(QStringLiteral("exclamationmark.triangle.fill"), &Colors::orange);
            break;
        case Ability::Kind::afterLogin:
            m_icon->setIcon(QStringLiteral("clock.fill"), &Colors::orange);
            break;
        case Ability::Kind::no:
            m_icon->setIcon(QStringLiteral("minus.circle"), &Colors::textSecondary);
            break;
        }
        m_text->setText(abilityText(kind));
        setAccessibleName(m_text->text());
    }

private:
    IconView* m_icon;
    TextLabel* m_text;
};

struct AbilityRow {
    std::function<QString(const AppModel&)> label;
    std::function<Ability(const AppModel&)> ability;
    std::function<QString(const AppModel&)> note;
};

QWidget* makeAbilityRow(AppModel& model, const AbilityRow& row) {
    auto* label = new TextLabel({}, TextStyle::callout, ink::primary, Overflow::wrap);
    auto* note = new TextLabel({}, TextStyle::caption, ink::secondary, Overflow::wrap);
    auto* view = new AbilityView;
    auto* texts = new QWidget;
    auto* column = tight<QVBoxLayout>(texts, 2);
    column->addWidget(label);
    column->addWidget(note);
    auto* whole = new QWidget;
    auto* layout = tight<QHBoxLayout>(whole, rowGap);
    layout->addWidget(texts, 1);
    layout->addWidget(view);
    follow(model, whole, [&model, row, label, note, view, whole] {
        label->setText(row.label(model));
        note->setText(row.note(model));
        note->setHidden(note->text().isEmpty());
        view->show(row.ability(model).kind);
        whole->setAccessibleName(label->text() + QStringLiteral("：") + view->accessibleName());
        whole->setAccessibleDescription(note->text());
    });
    return whole;
}

QString windowLabel(const AppModel& model) {
    const QString& source = model.abilities().source;
    return QStringLiteral("前面のウィンドウ") +
           (source.isEmpty() ? QString() : QStringLiteral("（%1）").arg(source));
}

AbilityRow plainRow(const QString& label, Ability Abilities::*ability) {
    return {.label = [label](const AppModel&) { return label; },
            .ability = [ability](const AppModel& model) { return model.abilities().*ability; },
            .note = [ability](const AppModel& model) { return (model.abilities().*ability).note; }};
}

} // namespace

FormSection* makePermissionSection(AppModel& model) {
    auto* section = new FormSection(QStringLiteral("許可"), Card::Kind::outer);
    section->addRow(QStringLiteral("アクセシビリティ（ウィンドウ名）"), makePermission(model));
    AbilityRow windows = plainRow({}, &Abilities::windows);
    windows.label = windowLabel;
    AbilityRow addresses = plainRow(QStringLiteral("ブラウザの URL"), &Abilities::addresses);
    addresses.note = [](const AppModel& ofModel) { return ofModel.words().addressNote; };
    for (const AbilityRow& row :
         {windows, addresses, plainRow(QStringLiteral("操作のない時間"), &Abilities::idle),
          plainRow(QStringLiteral("画面のロック"), &Abilities::lock)}) {
        section->addRow(makeAbilityRow(model, row));
    }
    return section;
}

} // namespace kestu
