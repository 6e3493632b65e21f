// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/ChartLegend.h"

#include "ui/controls/Painted.h"
#include "ui/controls/Roles.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace kestu {
namespace {

constexpr int dotSize = 8;
constexpr int dotGap = 6;
constexpr int entryGap = 14;
constexpr int widestName = 152;

} // namespace

ChartLegend::ChartLegend(QWidget* parent)
    : QWidget(parent) {
    setFont(fontOf(TextStyle::caption));
    setFixedHeight(17);
    reportRole(this, QAccessible::StaticText);
}

void ChartLegend::setEntries(const std::vector<Entry>& entries) {
    if (m_entries == entries) {
        return;
    }
    m_entries = entries;
    setAccessibleName(QStringLiteral("凡例：") + names().join(QStringLiteral("、")));
    updateGeometry();
    update();
}

QStringList ChartLegend::names() const {
    QStringList names;
    for (const Entry& entry : m_entries) {
        names << entry.name;
    }
    return names;
}

int ChartLegend::widthOfEntry(const Entry& entry) const {
    return dotSize + dotGap + std::min(widthOf(entry.name, font()), widestName);
}

QString ChartLegend::restText(std::size_t shown) const {
    return shown == m_entries.size() ? QString() : QStringLiteral("ほか%1件").arg(m_entries.size() - shown);
}

/// The most entries that fit together with the count of the others.
std::size_t ChartLegend::shownCount() const {
    int used = 0;
    std::size_t best = 0;
    for (std::size_t shown = 1; shown <= m_entries.size(); ++shown) {
        used += widthOfEntry(m_entries[shown - 1]) + (shown > 1 ? entryGap : 0);
        const QString rest = restText(shown);
        if (used + (rest.isEmpty() ? 0 : entryGap + widthOf(rest, font())) <= width()) {
            best = shown;
        }
    }
    return best;
}

bool ChartLegend::isShortened() const {
    return shownCount() < m_entries.size() || std::ranges::any_of(m_entries, [this](const Entry& entry) {
               return widthOf(entry.name, font()) > widestName;
           });
}

QSize ChartLegend::sizeHint() const {
    int width = 0;
    for (const Entry& entry : m_entries) {
        width += widthOfEntry(entry) + entryGap;
    }
    return {std::max(width - entryGap, 0), height()};
}

bool ChartLegend::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || !isShortened()) {
        return QWidget::event(event);
    }
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipOf(names().join(u'\n')), this);
    return true;
}

void ChartLegend::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const std::size_t shown = shownCount();
    const QString rest = restText(shown);
    const int restWidth = rest.isEmpty() ? 0 : widthOf(rest, font());
    painter.setPen(colors.textSecondary);
    painter.drawText(rect(), Qt::AlignRight | Qt::AlignVCenter, rest);
    int right = width() - (rest.isEmpty() ? 0 : restWidth + entryGap);
    for (std::size_t place = shown; place-- > 0;) { // from the right edge, for that is where they align
        const Entry& entry = m_entries[place];
        const QRect box(right - widthOfEntry(entry), 0, widthOfEntry(entry), height());
        painter.setPen(Qt::NoPen);
        painter.setBrush(entry.color.isValid() ? entry.color : colors.unassigned);
        painter.drawEllipse(QRectF(box.left(), (height() - dotSize) / 2.0, dotSize, dotSize));
        painter.setPen(colors.textSecondary);
        painter.drawText(box.adjusted(dotSize + dotGap, 0, 0, 0),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         elided(entry.name, font(), Qt::ElideRight, widestName));
        right = box.left() - entryGap;
    }
}

} // namespace kestu
