// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/ActivityDetail.h"

#include "app/AppModel.h"
#include "classify/DurationText.h"
#include "ui/controls/FlowLayout.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/CategoryPicker.h"
#include "ui/parts/Texts.h"
#include "ui/theme/KestuStyle.h"
#include "ui/timeline/SliceTexts.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <array>

namespace kestu {
namespace {

constexpr int gap = 8;
constexpr int longestTitle = 3; // lines
constexpr int widestChip = 288; // the panel's width within its padding

/// The project that the rules alone give.
std::optional<ProjectId> projectByRules(Activity activity, const std::vector<Rule>& rules) {
    activity.projectId.reset();
    return resolve(activity, rules).projectId;
}

QString nameOf(const Activity& activity) {
    if (!activity.isManual) {
        return activity.appName;
    }
    return activity.title.isEmpty() ? QStringLiteral("手動の区間") : activity.title;
}

void showText(TextLabel& label, const QString& text) {
    label.setText(text);
    label.setVisible(!text.isEmpty());
}

QPushButton* makeBorderless(const QString& text) {
    auto* button = new QPushButton(text);
    setBorderless(button);
    return button;
}

} // namespace

ActivityDetail::ActivityDetail(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_heading(new TextLabel({}, TextStyle::headline))
    , m_name(new TextLabel({}, TextStyle::title3, ink::primary, Overflow::elideRight))
    , m_title(new TextLabel({}, TextStyle::callout, ink::primary, Overflow::wrap))
    , m_address(new TextLabel({}, TextStyle::caption, ink::secondary, Overflow::elideMiddle))
    , m_time(new TextLabel({}, TextStyle::caption, ink::secondary, Overflow::wrap))
    , m_project(new CategoryPicker(CategoryPicker::Divider::afterFirst))
    , m_tags(new QWidget)
    , m_chips(*new FlowLayout(6, m_tags))
    , m_edit(makeBorderless(QStringLiteral("時間・内容を直す…"))) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(gap);
    column->addLayout(makeHeader());
    column->addLayout(makeTexts());
    column->addLayout(makeProject());
    column->addLayout(makeTagTexts());
    column->addLayout(makeButtons());
    connect(&m_model, &AppModel::projectsChanged, this, &ActivityDetail::showProject);
    connect(&m_model, &AppModel::rulesChanged, this, &ActivityDetail::showProject);
    connect(&m_model, &AppModel::tagsChanged, this, &ActivityDetail::showTags);
    connect(&m_model, &AppModel::selectedDayChanged, this,
            &ActivityDetail::showTexts); // in another time zone
}

QLayout* ActivityDetail::makeHeader() {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(sideRoom.left(), 0, 0, 0); // the cross ends where the texts do
    row->setSpacing(gap);
    row->addWidget(m_heading, 1);
    auto* close = new IconButton(QStringLiteral("xmark"), QStringLiteral("閉じる"));
    row->addWidget(close);
    connect(close, &QAbstractButton::clicked, this, [this] { m_model.setSelectedActivityId(std::nullopt); });
    return row;
}

QLayout* ActivityDetail::makeTexts() {
    m_title->setMaximumLines(longestTitle);
    m_title->setCopyable(true);
    m_address->setCopyable(true);
    auto* column = new QVBoxLayout;
    column->setContentsMargins(sideRoom);
    column->setSpacing(4);
    for (TextLabel* label : {m_name, m_title, m_address, m_time}) {
        column->addWidget(label);
    }
    return column;
}

QLayout* ActivityDetail::makeProject() {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(sideRoom + QMargins(0, 4, 0, 0));
    row->setSpacing(gap);
    m_project->setAccessibleName(QStringLiteral("プロジェクト"));
    auto* label = new TextLabel(m_project->accessibleName());
    label->setBuddy(m_project);
    row->addWidget(label);
    row->addWidget(m_project, 1);
    connect(m_project, &QComboBox::activated, this, &ActivityDetail::chooseProject);
    return row;
}

QLayout* ActivityDetail::makeTagTexts() {
    auto* column = new QVBoxLayout;
    column->setContentsMargins(sideRoom);
    column->setSpacing(gap);
    column->addWidget(new TextLabel(QStringLiteral("ここで選ぶと、この区間だけルールより優先されます。"),
                                    TextStyle::caption2, ink::tertiary, Overflow::wrap));
    auto* title = new TextLabel(QStringLiteral("タグ（いくつでも）"), TextStyle::caption);
    title->setFont(semibold(title->font()));
    title->setContentsMargins(0, 4, 0, 0);
    column->addWidget(title);
    column->addWidget(m_tags);
    return column;
}

QLayout* ActivityDetail::makeButtons() {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, sideRoom.right(), 0); // their texts begin where those above them do
    row->setSpacing(sideRoom.left());
    auto* remove = makeBorderless(QStringLiteral("この区間を削除"));
    setRole(remove, ButtonRole::destructive);
    row->addWidget(m_edit);
    row->addWidget(remove);
    row->addStretch();
    connect(m_edit, &QPushButton::clicked, this, [this] { m_model.correctEntry(m_item->activity); });
    connect(remove, &QPushButton::clicked, this, [this] { m_model.deleteActivity(m_item->activity.id); });
    return row;
}

void ActivityDetail::setPieces(const std::vector<ResolvedActivity>& pieces) {
    if (m_pieces == pieces) {
        return;
    }
    m_pieces = pieces;
    m_item = pieces.front();
    showTexts();
    showProject();
    showTags();
}

void ActivityDetail::showTexts() {
    if (!m_item) {
        return;
    }
    const Activity& activity = m_item->activity;
    m_heading->setText(activity.isManual ? QStringLiteral("選択中（手動）") : QStringLiteral("選択中"));
    m_name->setText(nameOf(activity));
    showText(*m_title, activity.isManual ? QString() : activity.title);
    showText(*m_address, activity.url.value_or(QString()));
    double seconds = 0;
    for (const ResolvedActivity& piece : m_pieces) {
        seconds += secondsOf(piece);
    }
    m_time->setText(rangesText(m_pieces, m_model) + QStringLiteral("（%1）").arg(formatDuration(seconds)));
    m_edit->setVisible(activity.isManual);
}

void ActivityDetail::showProject() {
    if (!m_item) {
        return;
    }
    const QString automatic = projectName(m_model, projectByRules(m_item->activity, m_model.rules()));
    m_project->showCategories(QStringLiteral("自動（%1）").arg(automatic), m_model, CategoryKind::project,
                              m_item->activity.projectId);
}

void ActivityDetail::showTags() {
    if (!m_item) {
        return;
    }
    QStringList keys;
    for (const Tag& tag : m_model.tags()) {
        keys += QString::number(tag.id) + (isGivenByRuleAlone(tag.id) ? u'-' : u'+');
    }
    const bool isRearranged =
        m_chips.arrange(keys, [this](std::size_t index) { return makeChip(m_model.tags()[index].id); });
    for (std::size_t index = 0; index < m_model.tags().size(); ++index) {
        m_chips.rows()[index]->setLook(lookOf(m_model.tags()[index].id));
    }
    m_tags->setVisible(!keys.isEmpty());
    if (isRearranged) {
        Q_EMIT rearranged();
    }
}

bool ActivityDetail::isGivenByRuleAlone(TagId id) const {
    return m_item->ruleTagIds.contains(id) && !m_item->activity.tagIds.contains(id);
}

TagChip::Look ActivityDetail::lookOf(TagId id) const {
    return {.name = tagName(m_model, id),
            .color = tagColor(m_model, id),
            .on = m_item->tagIds.contains(id),
            .note = isGivenByRuleAlone(id) ? QStringLiteral("ルール") : QString()};
}

TagChip* ActivityDetail::makeChip(TagId id) {
    const bool isFixed = isGivenByRuleAlone(id);
    auto* chip = new TagChip(lookOf(id), isFixed ? TagChip::Kind::label : TagChip::Kind::clickable);
    chip->setMaximumWidth(widestChip);
    if (!isFixed) {
        connect(chip, &QAbstractButton::clicked, this, [this, id] { toggleTag(id); });
    }
    return chip;
}

void ActivityDetail::chooseProject() {
    const auto chosen = m_project->chosen();
    if (chosen == m_item->activity.projectId) {
        return;
    }
    const std::array ids{m_item->activity.id};
    m_model.assignProject(chosen, ids);
    showProject(); // as it was, if it could not be written
}

void ActivityDetail::toggleTag(TagId id) {
    const Activity activity = m_item->activity;
    m_model.toggleTag(id, activity);
    showTags(); // as it was, if it could not be written
}

} // namespace kestu
