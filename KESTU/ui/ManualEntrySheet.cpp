// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ManualEntrySheet.h"

#include "app/AppModel.h"
#include "base/LocalClock.h"
#include "base/Text.h"
#include "classify/DurationText.h"
#include "ui/controls/DateTimeField.h"
#include "ui/controls/FlowLayout.h"
#include "ui/controls/FormSection.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/CategoryPicker.h"
#include "ui/parts/Texts.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <cmath>

namespace kestu {
namespace {

constexpr int sheetWidth = 480;
constexpr int sectionGap = 16;
constexpr int controlWidth = 226;
constexpr int widestChip = 290;
constexpr Seconds shortestEntry{60};
constexpr double smallestWarning = 60; // seconds

/// What the clock on the wall shows; whole minutes.
void showInstant(DateTimeField& field, Instant instant, const Calendar& calendar) {
    const auto local = LocalClock(calendar).at(instant);
    if (local) {
        field.setWallTime(local->date, QTime(local->secondOfDay / 3600, local->secondOfDay / 60 % 60));
    }
}

/// Of two instants with the same time on the wall, as when the clocks are set back, the one near `former`.
Instant instantIn(const DateTimeField& field, const Calendar& calendar, Instant former) {
    const QDateTime local(field.date(), field.time(), calendar.zone);
    const Instant found = instantAt(static_cast<double>(local.toSecsSinceEpoch()));
    const auto wall = LocalClock(calendar).at(found);
    Instant nearest = found;
    for (const Seconds shift : {Seconds{-3600}, Seconds{3600}}) {
        const auto other = LocalClock(calendar).at(found + shift);
        const bool isSame =
            wall && other && wall->date == other->date && wall->secondOfDay == other->secondOfDay;
        const auto distance = [former](Instant instant) { return std::abs((instant - former).count()); };
        nearest = isSame && distance(found + shift) < distance(nearest) ? found + shift : nearest;
    }
    return nearest;
}

} // namespace

ManualEntrySheet::ManualEntrySheet(QWidget* host, AppModel& model)
    : Sheet(host, sheetWidth)
    , m_model(model)
    , m_draft(model.manualDraft().value())
    , m_start(new DateTimeField(QStringLiteral("開始")))
    , m_end(new DateTimeField(QStringLiteral("終了")))
    , m_length(new TextLabel({}, TextStyle::callout, ink::secondary))
    , m_warning(new TextLabel({}, TextStyle::caption, ink::orange, Overflow::wrap))
    , m_title(new QLineEdit(m_draft.title))
    , m_wantedEnd(m_draft.end) {
    setAccessibleName(QStringLiteral("手動の記録"));
    setFooterLine(true);
    content()->setSpacing(sectionGap);
    content()->addWidget(makeTimes());
    content()->addWidget(makeContent());
    connect(addButton(QStringLiteral("キャンセル")), &QPushButton::clicked, this, &Sheet::cancel);
    m_save = addButton(QStringLiteral("保存"), true);
    connect(m_save, &QPushButton::clicked, this, &ManualEntrySheet::save);
    connect(this, &Sheet::cancelled, this, [this] { m_model.setManualDraft(std::nullopt); });
    setFirstFocus(m_start);
    showTimes();
    refresh();
    connect(m_start, &DateTimeField::edited, this, &ManualEntrySheet::takeTimes);
    connect(m_end, &DateTimeField::edited, this, &ManualEntrySheet::takeTimes);
    connect(&m_model, &AppModel::revisionChanged, this, &ManualEntrySheet::refresh); // what it replaces grew
}

FormSection* ManualEntrySheet::makeTimes() {
    auto* section = new FormSection(QStringLiteral("時間"));
    section->addRow(QStringLiteral("開始"), m_start);
    section->addRow(QStringLiteral("終了"), m_end);
    section->addRow(QStringLiteral("長さ"), m_length);
    auto* warning = new QWidget;
    auto* row = new QHBoxLayout(warning);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    row->addWidget(
        new IconView(QStringLiteral("exclamationmark.triangle"), metrics::icon, &Colors::orangeText), 0,
        Qt::AlignTop);
    row->addWidget(m_warning, 1);
    m_warningRow = section->addRow(warning);
    return section;
}

FormSection* ManualEntrySheet::makeContent() {
    m_title->setPlaceholderText(QStringLiteral("例：A社と打ち合わせ、移動、読書"));
    m_title->setAccessibleName(QStringLiteral("内容"));
    auto* section = new FormSection(QStringLiteral("内容"));
    section->addRow(m_title);
    section->addRow(QStringLiteral("プロジェクト"), makeProjects());
    section->addRow(QStringLiteral("タグ"), makeTags());
    return section;
}

CategoryPicker* ManualEntrySheet::makeProjects() {
    m_projects = new CategoryPicker(CategoryPicker::Divider::none);
    m_projects->setFixedWidth(controlWidth);
    connect(m_projects, &QComboBox::currentIndexChanged, this,
            [this] { m_draft.projectId = m_projects->chosen(); });
    connect(&m_model, &AppModel::projectsChanged, this, &ManualEntrySheet::showProjects);
    showProjects();
    return m_projects;
}

/// Another process may have taken the chosen one away.
void ManualEntrySheet::showProjects() {
    const auto chosen = m_draft.projectId;
    const bool isThere = chosen && m_model.project(*chosen);
    m_projects->showCategories(QStringLiteral("未分類"), m_model, CategoryKind::project,
                               isThere ? chosen : std::nullopt);
    m_draft.projectId = m_projects->chosen();
}

QWidget* ManualEntrySheet::makeTags() {
    m_tags = new QWidget;
    m_chips.emplace(*new FlowLayout(6, m_tags));
    connect(&m_model, &AppModel::tagsChanged, this, &ManualEntrySheet::showTags);
    showTags();
    return m_tags;
}

void ManualEntrySheet::showTags() {
    QSet<TagId> known;
    for (const Tag& tag : m_model.tags()) {
        known.insert(tag.id);
    }
    m_draft.tagIds.intersect(known);
    QStringList keys;
    for (const Tag& tag : m_model.tags()) {
        keys += QString::number(tag.id);
    }
    m_chips->arrange(keys, [this](std::size_t index) { return makeChip(m_model.tags()[index].id); });
    for (std::size_t index = 0; index < m_chips->rows().size(); ++index) {
        m_chips->rows()[index]->setLook(lookOf(m_model.tags()[index].id));
    }
}

TagChip::Look ManualEntrySheet::lookOf(TagId id) const {
    return {.name = tagName(m_model, id),
            .color = tagColor(m_model, id),
            .on = m_draft.tagIds.contains(id),
            .note = {}};
}

TagChip* ManualEntrySheet::makeChip(TagId id) {
    auto* chip = new TagChip(lookOf(id), TagChip::Kind::clickable);
    chip->setMaximumWidth(widestChip);
    connect(chip, &QAbstractButton::clicked, this, [this, chip, id] {
        if (!m_draft.tagIds.remove(id)) {
            m_draft.tagIds.insert(id);
        }
        chip->setLook(lookOf(id));
    });
    return chip;
}

/// Only what the user changed: the seconds of a time that was not touched stay.
void ManualEntrySheet::takeTimes() {
    const Calendar calendar = m_model.calendar();
    if (sender() == m_start) {
        m_draft.start = instantIn(*m_start, calendar, m_draft.start);
    } else {
        m_wantedEnd = instantIn(*m_end, calendar, m_draft.end);
    }
    m_draft.end = std::max(m_wantedEnd, m_draft.start); // a half-typed start does not move it for good
    showTimes();
    refresh();
}

void ManualEntrySheet::showTimes() {
    const Calendar calendar = m_model.calendar();
    showInstant(*m_start, m_draft.start, calendar);
    showInstant(*m_end, m_draft.end, calendar);
    m_end->setEarliest(m_start->dateTime());
}

void ManualEntrySheet::refresh() {
    m_save->setEnabled(m_draft.end - m_draft.start >= shortestEntry);
    m_length->setText(formatDuration(lengthOf(m_draft.start, m_draft.end).count()));
    const double overlap = m_model.automaticOverlap(m_draft.start, m_draft.end);
    m_warning->setText(
        QStringLiteral("この時間には自動の記録が %1 あります。登録すると、その部分は手動のほうに"
                       "置き換わります。")
            .arg(formatDuration(overlap)));
    m_warningRow->setVisible(overlap >= smallestWarning);
}

void ManualEntrySheet::save() {
    m_draft.title = trimmedWhiteSpace(m_title->text());
    m_model.saveManualDraft(m_draft); // which takes the draft away, and so closes this
}

} // namespace kestu
