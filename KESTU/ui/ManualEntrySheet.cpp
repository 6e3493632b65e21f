// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ManualEntrySheet.h"

#include "app/AppModel.h"
#include "base/LocalClock.h"
#include "base/Text.h"
#include "classify/DurationText.h"
#include "ui/controls/Composition.h"
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
WallTime wallTime(Instant instant, const Calendar& calendar) {
    const auto local = LocalClock(calendar).at(instant);
    return local ? WallTime{.date = local->date,
                            .time = QTime(local->secondOfDay / 3600, local->secondOfDay / 60 % 60)}
                 : WallTime{};
}

/// Without the seconds that nobody sees.
Instant shownMinute(Instant instant, const Calendar& calendar) {
    const auto local = LocalClock(calendar).at(instant);
    return local ? instantAt(std::floor(epochSeconds(instant)) - local->secondOfDay % 60) : instant;
}

Instant firstInstantAt(const WallTime& time, const Calendar& calendar) {
    return instantAt(static_cast<double>(QDateTime(time.date, time.time, calendar.zone).toSecsSinceEpoch()));
}

} // namespace

ManualEntrySheet::ManualEntrySheet(QWidget* host, AppModel& model)
    : Sheet(host, sheetWidth)
    , m_model(model)
    , m_opened(model.manualDraft().value())
    , m_draft(m_opened)
    , m_start(new DateTimeField(QStringLiteral("開始")))
    , m_end(new DateTimeField(QStringLiteral("終了")))
    , m_length(new TextLabel({}, TextStyle::callout, ink::secondary))
    , m_warning(new TextLabel({}, TextStyle::caption, ink::orange, Overflow::wrap))
    , m_title(new QLineEdit(m_draft.title))
    , m_composition(new Composition(m_title)) {
    setAccessibleName(QStringLiteral("手動の記録"));
    setFooterLine(true);
    content()->setSpacing(sectionGap);
    content()->addWidget(makeTimes());
    content()->addWidget(makeContent());
    connect(addButton(QStringLiteral("キャンセル")), &QPushButton::clicked, this, &Sheet::cancel);
    m_save = addButton(QStringLiteral("保存"), true);
    connect(m_save, &QPushButton::clicked, this, &ManualEntrySheet::save);
    connect(this, &Sheet::cancelled, this, [this] { m_model.setManualDraft(std::nullopt); });
    setFirstFocus(m_draft.editingId ? static_cast<QWidget*>(m_start) : m_title);
    showTimes();
    refresh();
    connect(m_start, &DateTimeField::edited, this, &ManualEntrySheet::takeStart);
    connect(m_end, &DateTimeField::edited, this, &ManualEntrySheet::takeEnd);
    for (DateTimeField* field : {m_start, m_end}) {
        field->setObjection([this](const WallTime& time) { return objectionTo(time); });
        connect(field, &DateTimeField::changed, this, &ManualEntrySheet::refresh);
    }
    connect(&m_model, &AppModel::revisionChanged, this, &ManualEntrySheet::refresh); // what it replaces grew
}

FormSection* ManualEntrySheet::makeTimes() {
    auto* section = new FormSection(QStringLiteral("時間"));
    section->addRow(QStringLiteral("開始"), m_start);
    section->addRow(QStringLiteral("終了"), m_end);
    section->addRow(QStringLiteral("長さ"), m_length);
    auto* warning = new QWidget;
    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(
        new IconView(QStringLiteral("exclamationmark.triangle"), metrics::icon, &Colors::orangeText), 0,
        Qt::AlignTop);
    row->addWidget(m_warning, 1);
    auto* column = new QVBoxLayout(warning); // in which one line stands in the middle, beside its icon
    column->setContentsMargins(0, 0, 0, 0);
    column->addStretch();
    column->addLayout(row);
    column->addStretch();
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

/// Where the clocks are set forward, an hour of the wall never comes.
QString ManualEntrySheet::objectionTo(const WallTime& time) const {
    const Calendar calendar = m_model.calendar();
    return wallTime(firstInstantAt(time, calendar), calendar) == time
               ? QString()
               : QStringLiteral("%1 %2 は、時計が進められるため、ありません。")
                     .arg(dateText(time.date), time.time.toString(QStringLiteral("H:mm")));
}

/// Of two instants with the same time on the wall, as when the clocks are set back, the one near `former`.
Instant ManualEntrySheet::instantIn(const WallTime& time, Instant former) const {
    const Calendar calendar = m_model.calendar();
    const Instant found = firstInstantAt(time, calendar);
    Instant nearest = found;
    for (const Seconds shift : {Seconds{-3600}, Seconds{3600}}) {
        const auto distance = [former](Instant instant) { return std::abs((instant - former).count()); };
        const bool isSame = wallTime(found + shift, calendar) == time;
        nearest = isSame && distance(found + shift) < distance(nearest) ? found + shift : nearest;
    }
    return nearest;
}

/// Times that nobody touched keep their seconds; from then on what is shown is what is meant.
void ManualEntrySheet::dropSeconds() {
    const Calendar calendar = m_model.calendar();
    m_draft.start = shownMinute(m_draft.start, calendar);
    m_draft.end = shownMinute(m_draft.end, calendar);
}

/// The end goes along, so that the length stays; a wrong one has no length that anybody wants.
void ManualEntrySheet::takeStart() {
    dropSeconds();
    const Seconds length = m_draft.end - m_draft.start;
    m_draft.start = instantIn(m_start->entry().value(), m_draft.start);
    if (length > Seconds{0}) {
        m_draft.end = m_draft.start + length;
    }
    showTimes();
}

void ManualEntrySheet::takeEnd() {
    dropSeconds();
    m_draft.end = instantIn(m_end->entry().value(), m_draft.end);
}

void ManualEntrySheet::showTimes() {
    const Calendar calendar = m_model.calendar();
    const WallTime start = wallTime(m_draft.start, calendar);
    const WallTime end = wallTime(m_draft.end, calendar);
    if (m_start->entry().value() != start) {
        m_start->setWallTime(start);
    }
    if (m_end->entry().value() != end) {
        m_end->setWallTime(end);
    }
    m_end->setEarliest(start);
}

/// With what is half-typed.
Instant ManualEntrySheet::shownEnd() const {
    const auto typed = m_end->entry().isHalfTyped() ? m_end->entry().typed() : std::nullopt;
    return typed ? instantIn(*typed, m_draft.end) : m_draft.end;
}

void ManualEntrySheet::refresh() {
    const Instant end = shownEnd();
    const bool isHalfTyped = m_start->entry().isHalfTyped() || m_end->entry().isHalfTyped();
    const bool isWrong = m_start->entry().isWrong() || m_end->entry().isWrong();
    const bool isLongEnough = end - m_draft.start >= shortestEntry;
    m_save->setEnabled(!isWrong && (isLongEnough || isHalfTyped)); // what is half-typed may become right
    const Calendar calendar = m_model.calendar();
    const Seconds shown = shownMinute(end, calendar) - shownMinute(m_draft.start, calendar);
    m_length->setText(formatDuration(std::max(shown.count(), 0.0)));
    QString remark;
    if (!isLongEnough && !isHalfTyped) {
        remark = m_draft.end <= m_draft.start ? QStringLiteral("終了は開始より後にしてください。")
                                              : QStringLiteral("長さは1分以上にしてください。");
    }
    m_end->setRemark(remark);
    showWarning(end);
}

/// What is wrong, or else what saving will replace.
void ManualEntrySheet::showWarning(Instant end) {
    const double overlap = m_model.automaticOverlap(m_draft.start, end);
    QString warning = m_start->told();
    if (warning.isEmpty()) {
        warning = m_end->told();
    }
    if (warning.isEmpty() && overlap >= smallestWarning) {
        warning = QStringLiteral("この時間には自動の記録が %1 あります。登録すると、その部分は手動のほうに"
                                 "置き換わります。")
                      .arg(formatDuration(overlap));
    }
    m_warning->setText(warning);
    m_warningRow->setVisible(!warning.isEmpty());
}

bool ManualEntrySheet::holdsDraft() const {
    ManualDraft draft = m_draft;
    draft.title = m_title->text() + m_composition->text();
    return draft != m_opened || m_start->entry().isHalfTyped() || m_end->entry().isHalfTyped();
}

void ManualEntrySheet::save() {
    m_composition->finish();
    const bool isFinished = m_start->finish() && m_end->finish();
    if (!isFinished || m_draft.end - m_draft.start < shortestEntry) {
        return; // which the sheet shows by now
    }
    m_draft.title = trimmedWhiteSpace(m_title->text());
    m_model.saveManualDraft(m_draft); // which takes the draft away, and so closes this
}

} // namespace kestu
