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
#include "ui/controls/TagChip.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/CategoryPicker.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int sheetWidth = 480;
constexpr int sectionGap = 16;
constexpr int controlWidth = 226;
constexpr Seconds shortestEntry{60};
constexpr double smallestWarning = 60; // seconds

/// What the clock on the wall shows; whole minutes.
void showInstant(DateTimeField& field, Instant instant, const Calendar& calendar) {
    const auto local = LocalClock(calendar).at(instant);
    if (local) {
        field.setWallTime(local->date, QTime(local->secondOfDay / 3600, local->secondOfDay / 60 % 60));
    }
}

Instant instantIn(const DateTimeField& field, const Calendar& calendar) {
    const QDateTime local(field.date(), field.time(), calendar.zone);
    return instantAt(static_cast<double>(local.toSecsSinceEpoch()));
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
    , m_title(new QLineEdit(m_draft.title)) {
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
    m_flow = new FlowLayout(6, m_tags);
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
    qDeleteAll(m_chips);
    m_chips.clear();
    for (const Tag& tag : m_model.tags()) {
        m_chips.push_back(makeChip(tag));
        m_flow->addWidget(m_chips.back());
    }
}

TagChip* ManualEntrySheet::makeChip(const Tag& tag) {
    const auto look = [this, tag] {
        return TagChip::Look{.name = tag.name,
                             .color = colorFromText(tag.colorHex),
                             .on = m_draft.tagIds.contains(tag.id),
                             .note = {}};
    };
    auto* chip = new TagChip(look(), TagChip::Kind::clickable);
    connect(chip, &QAbstractButton::clicked, this, [this, chip, look, id = tag.id] {
        if (!m_draft.tagIds.remove(id)) {
            m_draft.tagIds.insert(id);
        }
        chip->setLook(look());
    });
    return chip;
}

/// Only what the user changed: the seconds of a time that was not touched stay.
void ManualEntrySheet::takeTimes() {
    const Calendar calendar = m_model.calendar();
    if (sender() == m_start) {
        m_draft.start = instantIn(*m_start, calendar);
        m_draft.end = std::max(m_draft.end, m_draft.start);
    } else {
        m_draft.end = instantIn(*m_end, calendar);
    }
    showTimes();
    refresh();
}

void ManualEntrySheet::showTimes() {
    const Calendar calendar = m_model.calendar();
    m_end->clearMinimumDateTime();
    showInstant(*m_start, m_draft.start, calendar);
    showInstant(*m_end, m_draft.end, calendar);
    m_end->setMinimumDateTime(m_start->dateTime());
}

void ManualEntrySheet::refresh() {
    m_length->setText(formatDuration(lengthOf(m_draft.start, m_draft.end).count()));
    const double overlap = m_model.automaticOverlap(m_draft.start, m_draft.end);
    m_warning->setText(
        QStringLiteral("この時間には自動の記録が %1 あります。登録すると、その部分は手動のほうに"
                       "置き換わります。")
            .arg(formatDuration(overlap)));
    m_warningRow->setVisible(overlap >= smallestWarning);
    m_save->setEnabled(m_draft.end - m_draft.start >= shortestEntry);
}

void ManualEntrySheet::save() {
    m_draft.title = trimmedWhiteSpace(m_title->text());
    m_model.saveManualDraft(m_draft); // which takes the draft away, and so closes this
}

} // namespace kestu
