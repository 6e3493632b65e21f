// SPDX-License-Identifier: GPL-3.0-or-later
//
// The recorded time of one day, week or month as figures, chart and ranked lists, and its export. While it is
// hidden it reads nothing; shown, it reads once for all that changed together. Owned by the main window.
#pragma once

#include "reports/ReportBuilder.h"
#include "reports/ReportPeriod.h"
#include "ui/report/SaveDialog.h"

#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <optional>

class QScrollArea;

namespace kestu {

class AppModel;
class ExportSection;
class ReportHeader;
class ReportView;

class ReportScreen final : public QWidget {
    Q_OBJECT

public:
    /// `model` outlives this.
    explicit ReportScreen(AppModel& model, QWidget* parent = nullptr);

    /// Asks the user for a path; `chosen` is called with it, now or later, unless the user cancels.
    std::function<void(const SaveQuestion&, const std::function<void(const QString&)>& chosen)> askForPath;

Q_SIGNALS:
    /// The items of the shown period were read.
    void loaded();

protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    /// What the items on the screen were read for.
    struct LoadKey {
        ReportPeriod period = ReportPeriod::week;
        Interval range;
        std::int64_t revision = 0;
        bool operator==(const LoadKey&) const = default;
    };

    [[nodiscard]] QWidget* makeColumn();
    void connectControls();
    void select(ReportPeriod period, Instant anchor);
    void refreshSoon();
    void refresh();
    void load(const LoadKey& key);
    [[nodiscard]] Calendar calendar() const;
    [[nodiscard]] Interval range() const;
    [[nodiscard]] Instant anchor() const;
    [[nodiscard]] ReportBuilder makeBuilder();
    void setCopied(bool copied);
    void copy();
    void save(ReportFormat format);
    void write(const QString& path, const QString& text);

    AppModel& m_model;
    ReportHeader* m_header;
    ReportView* m_view;
    ExportSection* m_export;
    QScrollArea* m_scroll;
    ReportPeriod m_period = ReportPeriod::week;
    std::optional<Instant> m_anchor; // an instant of the shown period; none: now
    std::vector<ResolvedActivity> m_items;
    std::optional<LoadKey> m_loaded;
    bool m_isOutdated = true;
    QTimer m_refreshTimer;
    QString m_folder; // where reports are saved
};

} // namespace kestu
