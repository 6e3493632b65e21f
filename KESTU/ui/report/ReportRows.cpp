// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/ReportRows.h"

#include "ui/controls/Painted.h"
#include "ui/controls/Roles.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace kestu {
namespace {

constexpr int shareRowHeight = 26;
constexpr int dotSize = 10;
constexpr int nameLeft = 20;
constexpr int nameWidth = 152;
constexpr int durationRight = 276;
constexpr int shareRight = 324;
constexpr int barLeft = 340;
constexpr int barHeight = 8;
constexpr double shortestBar = 2;
constexpr float barOpacity = 0.8F;

constexpr int rankRowHeight = 30;
constexpr int rankWidth = 12;
constexpr int rankGap = 8;

constexpr int lineFlags = Qt::AlignVCenter | Qt::TextSingleLine;

void paintText(QPainter& painter, const QRect& box, const QString& text, Qt::Alignment side,
               const QColor& color) {
    painter.setPen(color);
    painter.drawText(box, static_cast<int>(side) | lineFlags, text);
}

QRect columnEndingAt(int right, const QRect& row) {
    return {0, row.top(), right, row.height()};
}

} // namespace

ReportRow::ReportRow(int height) {
    setFixedHeight(height);
    setFont(fontOf(TextStyle::callout));
    reportRole(this, QAccessible::ListItem);
}

bool ReportRow::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const QRect box = nameBox();
    if (widthOf(name(), font()) > box.width() && box.contains(help->pos())) {
        QToolTip::showText(help->globalPos(), toolTipOf(name()), this, box);
    } else {
        QToolTip::hideText();
        event->ignore();
    }
    return true;
}

ShareRow::ShareRow()
    : ReportRow(shareRowHeight) {}

void ShareRow::setContent(const Content& content) {
    if (m_content == content) {
        return;
    }
    m_content = content;
    setAccessibleName(content.name + u' ' + content.duration + u' ' + content.share);
    update();
}

QRect ShareRow::nameBox() const {
    return {nameLeft, 0, nameWidth, height()};
}

void ShareRow::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor color = m_content.color.isValid() ? m_content.color : colors.unassigned;
    painter.setBrush(color);
    painter.drawEllipse(0, (height() - dotSize) / 2, dotSize, dotSize);
    if (m_content.color.isValid()) { // that of unassigned time is translucent already
        color.setAlphaF(barOpacity);
    }
    const double length = std::max(shortestBar, (width() - barLeft) * m_content.bar);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(barLeft, (height() - barHeight) / 2.0, length, barHeight),
                            std::min(length, 1.0 * barHeight) / 2, barHeight / 2.0);
    const QRect name = nameBox();
    paintText(painter, name, elided(m_content.name, font(), Qt::ElideRight, name.width()), Qt::AlignLeft,
              colors.textPrimary);
    paintText(painter, columnEndingAt(durationRight, rect()), m_content.duration, Qt::AlignRight,
              colors.textPrimary);
    paintText(painter, columnEndingAt(shareRight, rect()), m_content.share, Qt::AlignRight,
              colors.textSecondary);
}

RankRow::RankRow()
    : ReportRow(rankRowHeight) {}

void RankRow::setContent(const Content& content) {
    if (m_content == content) {
        return;
    }
    m_content = content;
    setAccessibleName(QStringLiteral("%1 ").arg(content.rank) + content.name + u' ' + content.duration);
    update();
}

QRect RankRow::nameBox() const {
    const int left = rankWidth + rankGap;
    return {left, 1, width() - left - rankGap - widthOf(m_content.duration, font()), height() - 1};
}

void RankRow::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    painter.fillRect(0, 0, width(), 1, colors.divider);
    const QRect line = rect().adjusted(0, 1, 0, 0);
    const QRect name = nameBox();
    paintText(painter, name, elided(m_content.name, font(), Qt::ElideRight, name.width()), Qt::AlignLeft,
              colors.textPrimary);
    paintText(painter, line, m_content.duration, Qt::AlignRight, colors.textSecondary);
    painter.setFont(fontOf(TextStyle::caption));
    paintText(painter, line, QString::number(m_content.rank), Qt::AlignLeft, colors.textTertiary);
}

} // namespace kestu
