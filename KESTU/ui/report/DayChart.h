// SPDX-License-Identifier: GPL-3.0-or-later
//
// The recorded hours of each day of a period, stacked by project. Each piece tells its project and duration
// in a tooltip, and the whole is described in words. Owned by the report.
#pragma once

#include <QChartView>
#include <QColor>
#include <QDate>

#include <vector>

class QBarCategoryAxis;
class QStackedBarSeries;
class QValueAxis;

namespace kestu {

class DayChart final : public QChartView {
    Q_OBJECT

public:
    struct Part {
        QString name;
        QColor color;                // invalid for unassigned time
        std::vector<double> seconds; // of each day
        bool operator==(const Part&) const = default;
    };

    struct Data {
        std::vector<QDate> days;
        std::vector<Part> parts; // from the bottom up
        bool operator==(const Data&) const = default;
    };

    /// One part of one day, where it is drawn.
    struct Piece {
        QRectF box;
        std::size_t day = 0;
        std::size_t part = 0;
        bool isTop = false;
    };

    explicit DayChart(QWidget* parent = nullptr);

    void setData(const Data& content);
    [[nodiscard]] std::vector<Piece> pieces() const;
    /// The tooltip at a point of the chart; empty where there is no piece.
    [[nodiscard]] QString textAt(QPointF point) const;

protected:
    void changeEvent(QEvent* event) override;
    void drawForeground(QPainter* painter, const QRectF& rect) override;
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void setUpAxes();
    void fillSeries();
    void scaleHours();
    void layOut();
    void labelDays();
    void applyColors();
    [[nodiscard]] const Piece* pieceAt(const std::vector<Piece>& pieces, QPointF point) const;
    [[nodiscard]] QString textOf(const Piece& piece) const;
    [[nodiscard]] QString description() const;
    [[nodiscard]] double dayWidth() const;
    [[nodiscard]] double barWidth() const;

    Data m_data;
    QBarCategoryAxis* m_days;
    QValueAxis* m_hours;
    QStackedBarSeries* m_series;
};

} // namespace kestu
