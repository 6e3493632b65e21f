// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the colours of the chart stand for, right-aligned in one line. Names that find no room are counted,
// and a tooltip tells them all. Owned by the report.
#pragma once

#include <QColor>
#include <QWidget>

#include <vector>

namespace kestu {

class ChartLegend final : public QWidget {
    Q_OBJECT

public:
    struct Entry {
        QString name;
        QColor color; // invalid for unassigned time
        bool operator==(const Entry&) const = default;
    };

    explicit ChartLegend(QWidget* parent = nullptr);

    void setEntries(const std::vector<Entry>& entries);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int widthOfEntry(const Entry& entry) const;
    [[nodiscard]] std::size_t shownCount() const;
    [[nodiscard]] QString restText(std::size_t shown) const;
    [[nodiscard]] QStringList names() const;
    [[nodiscard]] bool isShortened() const;

    std::vector<Entry> m_entries;
};

} // namespace kestu
