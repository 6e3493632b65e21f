// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/ReportScreen.h"

#include "app/AppModel.h"
#include "ui/controls/Settling.h"
#include "ui/report/ExportSection.h"
#include "ui/report/ReportFigures.h"
#include "ui/report/ReportHeader.h"
#include "ui/report/ReportView.h"
#include "ui/theme/Theme.h"

#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHideEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int padding = 24;
constexpr int widestColumn = 980;

} // namespace

ReportScreen::ReportScreen(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , askForPath([this](const auto& question, const auto& chosen) { askWhereToSave(this, question, chosen); })
    , m_model(model)
    , m_header(new ReportHeader)
    , m_view(new ReportView(model))
    , m_export(new ExportSection)
    , m_scroll(new QScrollArea)
    , m_folder(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)) {
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFocusPolicy(Qt::NoFocus); // its controls scroll it
    m_scroll->setWidget(makeColumn());
    m_scroll->viewport()->setAutoFillBackground(false);
    m_scroll->widget()->setAutoFillBackground(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_scroll);
    connectControls();

    m_refreshTimer.setSingleShot(true);
    connect(&m_refreshTimer, &QTimer::timeout, this, &ReportScreen::refresh);
    for (const auto changed :
         {&AppModel::revisionChanged, &AppModel::projectsChanged, &AppModel::tagsChanged}) {
        connect(&m_model, changed, this, &ReportScreen::refreshSoon);
    }
}

QWidget* ReportScreen::makeColumn() {
    auto* column = new QWidget;
    column->setMaximumWidth(widestColumn);
    auto* sections = new QVBoxLayout(column);
    sections->setContentsMargins(padding, padding, padding, padding);
    sections->setSpacing(padding);
    sections->addWidget(m_header);
    sections->addWidget(m_view);
    sections->addWidget(m_export);
    sections->addStretch();
    auto* leading = new QWidget;
    auto* row = new QHBoxLayout(leading);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(column, 1);
    row->addStretch();
    return leading;
}

void ReportScreen::connectControls() {
    connect(m_header, &ReportHeader::periodChosen, this,
            [this](ReportPeriod period) { select(period, anchor()); });
    connect(m_header, &ReportHeader::stepped, this, [this](StepDirection direction) {
        select(m_period, step(m_period, anchor(), direction, calendar()));
    });
    connect(m_header, &ReportHeader::nowRequested, this, [this] { select(m_period, m_model.now()); });
    connect(m_export, &ExportSection::optionsChanged, this, [this] { setCopied(false); });
    connect(m_export, &ExportSection::copyRequested, this, &ReportScreen::copy);
    connect(m_export, &ExportSection::saveRequested, this, &ReportScreen::save);
}

Calendar ReportScreen::calendar() const {
    return reportCalendar(m_model.calendar());
}

Interval ReportScreen::range() const {
    return periodInterval(m_period, anchor(), calendar());
}

Instant ReportScreen::anchor() const {
    return m_anchor.value_or(m_model.now());
}

void ReportScreen::select(ReportPeriod period, Instant anchor) {
    m_period = period;
    m_anchor = anchor;
    refreshSoon();
}

/// Once for everything that comes before the event loop is idle; a hidden screen waits until it is shown.
void ReportScreen::refreshSoon() {
    m_isOutdated = true;
    if (isVisible()) {
        m_refreshTimer.start();
    }
}

void ReportScreen::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!m_anchor) {
        m_anchor = m_model.now();
    }
    if (m_isOutdated) {
        refresh();
    }
}

/// Whoever comes back begins with this week, at the top, and with everything in the export.
void ReportScreen::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous()) {
        m_period = ReportPeriod::week;
        m_anchor.reset();
        m_export->reset();
        setCopied(false);
        m_scroll->verticalScrollBar()->setValue(0);
        m_isOutdated = true;
    }
}

void ReportScreen::refresh() {
    m_refreshTimer.stop();
    if (!isVisible()) {
        return;
    }
    m_isOutdated = false;
    const LoadKey key{.period = m_period, .range = range(), .revision = m_model.revision()};
    if (m_loaded != key) {
        load(key);
    }
    const Instant now = m_model.now();
    m_header->display(m_period, periodTitle(m_period, key.range, calendar()),
                      key.range.start <= now && now < key.range.end);
    m_view->display(m_period, reportFigures(m_items, key.range, calendar()), calendar());
    settle(*this);
}

void ReportScreen::load(const LoadKey& key) {
    if (m_loaded && m_loaded->range != key.range) {
        setCopied(false);
    }
    m_loaded = key;
    m_items = m_model.loadItems(key.range);
    Q_EMIT loaded();
}

ReportBuilder ReportScreen::makeBuilder() {
    if (m_isOutdated) {
        refresh(); // never the items of one period under the dates of another
    }
    return {.range = range(),
            .items = m_items,
            .projects = m_model.projects(),
            .tags = m_model.tags(),
            .options = m_export->options(),
            .notes = {},
            .calendar = calendar()};
}

void ReportScreen::setCopied(bool copied) {
    m_export->setCopied(copied);
}

void ReportScreen::copy() {
    QGuiApplication::clipboard()->setText(textOf(makeBuilder(), ReportFormat::markdown));
    setCopied(true);
}

void ReportScreen::save(ReportFormat format) {
    const QString text = textOf(makeBuilder(), format);
    const SaveQuestion question{.format = format,
                                .folder = m_folder,
                                .fileName =
                                    exportFileName(m_period, range(), extensionOf(format), calendar())};
    askForPath(question, [this, text](const QString& path) { write(path, text); });
}

void ReportScreen::write(const QString& path, const QString& text) {
    if (const auto failure = saveReport(path, text)) {
        m_model.setErrorMessage(*failure);
        return;
    }
    m_folder = QFileInfo(path).absolutePath();
}

void ReportScreen::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), colorsOf(palette()).window);
}

} // namespace kestu
