// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/RuleSheet.h"

#include "base/Text.h"
#include "classify/DurationText.h"
#include "ui/controls/Composition.h"
#include "ui/controls/FormSection.h"
#include "ui/controls/Picker.h"
#include "ui/controls/SegmentedPicker.h"
#include "ui/controls/SwitchButton.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/CategoryPicker.h"
#include "ui/parts/Texts.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <array>
#include <utility>

namespace kestu {
namespace {

constexpr int sheetWidth = 460;
constexpr int sectionGap = 16;
constexpr int kindWidth = 346;
constexpr int controlWidth = 276;
constexpr int operatorWidth = 104;
constexpr std::array operators{RuleOperator::equals, RuleOperator::contains, RuleOperator::prefix};

QHBoxLayout* rowIn(QWidget* owner, int spacing) {
    auto* row = new QHBoxLayout(owner);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    return row;
}

QWidget* labelled(TextLabel* label, QWidget* control, int width) {
    auto* whole = new QWidget;
    auto* row = rowIn(whole, 12);
    control->setFixedWidth(width);
    label->setBuddy(control);
    row->addWidget(label, 1);
    row->addWidget(control);
    return whole;
}

QWidget* labelled(const QString& name, QWidget* control, int width) {
    control->setAccessibleName(name);
    return labelled(new TextLabel(name), control, width);
}

template<typename Choices>
QComboBox* pickerOf(const Choices& choices) {
    auto* picker = new Picker;
    for (const auto choice : choices) {
        picker->addItem(labelOf(choice), static_cast<int>(choice));
    }
    return picker;
}

template<typename Choice>
void choose(QComboBox& picker, Choice choice) {
    picker.setCurrentIndex(picker.findData(static_cast<int>(choice)));
}

template<typename Choice>
Choice chosenIn(const QComboBox& picker) {
    return static_cast<Choice>(picker.currentData().toInt());
}

bool isBlank(const QString& text) {
    return trimmedWhiteSpace(text).isEmpty();
}

} // namespace

QString groupLabel(const UnassignedGroup& group) {
    return group.domain ? group.appName + QStringLiteral(" · ") + *group.domain : group.appName;
}

RuleSheet::RuleSheet(QWidget* host, AppModel& model, UnassignedGroup group)
    : Sheet(host, sheetWidth)
    , m_model(model)
    , m_group(std::move(group))
    , m_kind(new SegmentedPicker(QStringLiteral("種類"), {QStringLiteral("プロジェクト（1つだけ）"),
                                                          QStringLiteral("タグ（掛け持ち可）")}))
    , m_targetLabel(new TextLabel({}))
    , m_target(new CategoryPicker(CategoryPicker::Divider::none))
    , m_nameLabel(new TextLabel({}))
    , m_name(new QLineEdit)
    , m_nameComposition(new Composition(m_name))
    , m_makeRule(new SwitchButton({}))
    , m_field(pickerOf(allRuleFields))
    , m_value(new QLineEdit)
    , m_valueComposition(new Composition(m_value))
    , m_op(pickerOf(operators)) {
    setAccessibleName(QStringLiteral("振り分け"));
    m_target->setPlaceholderText(QStringLiteral("選んでください"));
    setFooterLine(true);
    content()->setSpacing(sectionGap);
    content()->addWidget(makeGroup());
    content()->addWidget(makeTarget());
    content()->addWidget(makeRule());
    addButtons();
    m_choice.targetId = firstTarget();
    m_choice.field = m_group.domain ? RuleField::domain : RuleField::app;
    resetCondition();
    showTargets();
    m_opened = m_choice;
    setFirstFocus(m_choice.targetId ? static_cast<QWidget*>(m_target) : m_name);
    connect(&m_model, &AppModel::projectsChanged, this, &RuleSheet::showTargets);
    connect(&m_model, &AppModel::tagsChanged, this, &RuleSheet::showTargets);
    for (const Composition* composition : {m_nameComposition, m_valueComposition}) {
        connect(composition, &Composition::changed, this, &RuleSheet::refresh);
    }
}

bool RuleSheet::holdsDraft() const {
    return m_choice != m_opened || !m_nameOfOtherKind.isEmpty() || !m_nameComposition->text().isEmpty() ||
           !m_valueComposition->text().isEmpty();
}

void RuleSheet::addButtons() {
    connect(addButton(QStringLiteral("キャンセル")), &QPushButton::clicked, this, &Sheet::cancel);
    m_save = addButton(QStringLiteral("保存"), true);
    connect(m_save, &QPushButton::clicked, this, &RuleSheet::save);
}

FormSection* RuleSheet::makeGroup() const {
    auto* whole = new QWidget;
    auto* row = rowIn(whole, 12);
    row->addWidget(
        new TextLabel(groupLabel(m_group), TextStyle::headline, ink::primary, Overflow::elideRight), 1);
    row->addWidget(new TextLabel(formatDuration(m_group.seconds), TextStyle::callout, ink::secondary));
    auto* section = new FormSection({});
    section->addRow(whole);
    return section;
}

FormSection* RuleSheet::makeTarget() {
    auto* section = new FormSection(QStringLiteral("振り分け先"));
    section->addRow(labelled(m_kind->accessibleName(), m_kind, kindWidth));
    section->addRow(labelled(m_targetLabel, m_target, controlWidth));
    m_nameRow = section->addRow(labelled(m_nameLabel, m_name, controlWidth));
    connect(m_kind, &SegmentedPicker::chosen, this,
            [this](int index) { chooseKind(index == 0 ? CategoryKind::project : CategoryKind::tag); });
    connect(m_target, &QComboBox::activated, this, &RuleSheet::chooseTarget);
    connect(m_name, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_choice.newName = text;
        refresh();
    });
    return section;
}

FormSection* RuleSheet::makeRule() {
    auto* section = new FormSection(QStringLiteral("ルール"));
    section->addRow(makeSwitch());
    m_ruleRows.push_back(section->addRow(labelled(QStringLiteral("対象"), m_field, controlWidth)));
    m_ruleRows.push_back(
        section->addRow(labelled(new TextLabel(QStringLiteral("値")), makeValue(), controlWidth)));
    connect(m_field, &QComboBox::activated, this, [this] { chooseField(chosenIn<RuleField>(*m_field)); });
    connect(m_op, &QComboBox::activated, this, [this] { m_choice.op = chosenIn<RuleOperator>(*m_op); });
    connect(m_value, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_choice.value = text;
        refresh();
    });
    return section;
}

QWidget* RuleSheet::makeSwitch() {
    auto* whole = new QWidget;
    auto* row = rowIn(whole, 12);
    auto* label = new TextLabel(QStringLiteral("同じ作業を今後も自動で振り分ける"));
    m_makeRule->setLabel(label);
    m_makeRule->setChecked(m_choice.makeRule);
    row->addWidget(label, 1);
    row->addWidget(m_makeRule);
    connect(m_makeRule, &QAbstractButton::toggled, this, [this](bool on) {
        m_choice.makeRule = on;
        refresh();
    });
    return whole;
}

QWidget* RuleSheet::makeValue() {
    auto* whole = new QWidget;
    auto* row = rowIn(whole, 8);
    m_value->setAccessibleName(QStringLiteral("値"));
    m_op->setAccessibleName(QStringLiteral("条件"));
    m_op->setFixedWidth(operatorWidth);
    row->addWidget(m_value, 1);
    row->addWidget(m_op);
    return whole;
}

void RuleSheet::chooseKind(CategoryKind kind) {
    if (kind == m_choice.kind) {
        return;
    }
    m_nameComposition->finish();
    m_choice.kind = kind;
    m_choice.targetId = firstTarget();
    m_name->setText(std::exchange(m_nameOfOtherKind, m_choice.newName));
    showTargets();
}

void RuleSheet::chooseTarget() {
    m_choice.targetId = m_target->chosen();
    refresh();
    if (!m_choice.targetId) {
        m_name->setFocus(Qt::OtherFocusReason); // a new one is to be named next
    }
}

void RuleSheet::chooseField(RuleField field) {
    if (field != m_choice.field) {
        m_choice.field = field;
        resetCondition();
    }
}

/// What the group itself gives for the chosen field.
void RuleSheet::resetCondition() {
    switch (m_choice.field) {
    case RuleField::app:
        m_choice.value = m_group.appName;
        break;
    case RuleField::domain:
        m_choice.value = m_group.domain.value_or(QString());
        break;
    case RuleField::title:
        m_choice.value = m_group.sampleTitles.value(0);
        break;
    case RuleField::url:
        m_choice.value.clear();
        break;
    }
    const bool isWhole = m_choice.field == RuleField::app || m_choice.field == RuleField::domain;
    m_choice.op = isWhole ? RuleOperator::equals : RuleOperator::contains;
    choose(*m_field, m_choice.field);
    choose(*m_op, m_choice.op);
    m_value->setText(m_choice.value);
    m_value->setCursorPosition(0); // a long one is read from its start
    refresh();
}

/// Another process may take the chosen one away: then none is chosen, for no other was meant.
void RuleSheet::showTargets() {
    const QString kind = labelOf(m_choice.kind);
    const QString name = kind + QStringLiteral("名");
    m_targetLabel->setText(kind);
    m_target->setAccessibleName(kind);
    m_target->showCategories(QStringLiteral("新しい") + kind, m_model, m_choice.kind, m_choice.targetId);
    m_nameLabel->setText(name);
    m_name->setAccessibleName(name);
    refresh();
}

void RuleSheet::refresh() {
    m_nameRow->setVisible(!m_choice.targetId);
    for (QWidget* row : m_ruleRows) {
        row->setVisible(m_choice.makeRule);
    }
    m_save->setEnabled(canSave());
}

std::optional<RowId> RuleSheet::firstTarget() const {
    const auto firstOf = [](const auto& categories) {
        return categories.empty() ? std::nullopt : std::optional(categories.front().id);
    };
    return m_choice.kind == CategoryKind::project ? firstOf(m_model.projects()) : firstOf(m_model.tags());
}

bool RuleSheet::hasTarget(RowId id) const {
    return m_choice.kind == CategoryKind::project ? m_model.project(id) != nullptr
                                                  : m_model.tag(id) != nullptr;
}

bool RuleSheet::canSave() const {
    const bool isNamed = m_choice.targetId ? hasTarget(*m_choice.targetId)
                                           : !isBlank(m_choice.newName + m_nameComposition->text());
    return isNamed && (!m_choice.makeRule || !isBlank(m_choice.value + m_valueComposition->text()));
}

void RuleSheet::save() {
    m_nameComposition->finish();
    m_valueComposition->finish();
    const Classification choice = m_choice; // which may follow what the model does now
    if (m_model.classify(m_group, choice)) {
        close();
    }
}

} // namespace kestu
