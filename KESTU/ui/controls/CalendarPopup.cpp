// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/CalendarPopup.h"

#include "ui/controls/IconButton.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/Strokes.h"

#include <QCalendarWidget>
#include <QHBoxLayout>
#include <QLocale>
#include <QPainter>
#include <QScreen>
#include <QTextCharFormat>

namespace kestu {
namespace {

constexpr int padding = 8;
constexpr int fieldGap = 2;

/// The days in our own colours: those of other months stand back, those that cannot be chosen fade.
class Month final : public QCalendarWidget {
protected:
    void paintCell(QPainter* painter, const QRect& cell, QDate day) const override {
        const Colors& colors = colorsOf(palette());
        const bool isSelected = day == selectedDate();
        if (isSelected) {
            drawPanel(*painter, cell.adjusted(1, 1, -1, -1), metrics::radiusControl, colors.accentFill);
        }
        const bool isOutside = day < minimumDate() || day > maximumDate();
        painter->setPen(isSelected                    ? QColor(Qt::white)
                        : isOutside                   ? colors.textDisabled
                        : day.month() != monthShown() ? colors.textTertiary
                                                      : colors.textPrimary);
        painter->drawText(cell, Qt::AlignCenter, QString::number(day.day()));
    }
};

IconButton* makeStep(const QString& icon, const QString& name) {
    auto* step = new IconButton(icon, name);
    step->setFocusPolicy(Qt::NoFocus); // the keyboard turns the pages with Page Up and Page Down
    return step;
}

} // namespace

CalendarPopup::CalendarPopup(QDate day, QDate earliest, QWidget* field)
    : QWidget(field, Qt::Popup)
    , m_title(new TextLabel({}, TextStyle::headline))
    , m_month(new Month) {
    setAttribute(Qt::WA_DeleteOnClose);
    setUpMonth(day, earliest);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(4);
    layout->addWidget(makeHeader());
    layout->addWidget(m_month);
    connect(m_month, &QCalendarWidget::currentPageChanged, this, &CalendarPopup::showMonth);
    connect(m_month, &QCalendarWidget::clicked, this, &CalendarPopup::choose);
    connect(m_month, &QCalendarWidget::activated, this, &CalendarPopup::choose);
    showMonth();
}

void CalendarPopup::setUpMonth(QDate day, QDate earliest) {
    m_month->setLocale(QLocale(QLocale::Japanese, QLocale::Japan));
    m_month->setNavigationBarVisible(false); // it would write "11月 2026"
    m_month->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    m_month->setMinimumDate(earliest);
    m_month->setSelectedDate(day);
    QTextCharFormat names;
    names.setForeground(colorsOf(palette()).textSecondary);
    m_month->setHeaderTextFormat(names);
    for (const Qt::DayOfWeek weekday : {Qt::Saturday, Qt::Sunday}) {
        m_month->setWeekdayTextFormat(weekday, names); // not red
    }
}

QWidget* CalendarPopup::makeHeader() {
    auto* header = new QWidget;
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(6, 0, 0, 0);
    row->setSpacing(4);
    row->addWidget(m_title, 1);
    auto* back = makeStep(QStringLiteral("chevron.left"), QStringLiteral("前の月"));
    auto* forward = makeStep(QStringLiteral("chevron.right"), QStringLiteral("次の月"));
    row->addWidget(back);
    row->addWidget(forward);
    connect(back, &QAbstractButton::clicked, m_month, &QCalendarWidget::showPreviousMonth);
    connect(forward, &QAbstractButton::clicked, m_month, &QCalendarWidget::showNextMonth);
    return header;
}

void CalendarPopup::showMonth() {
    m_title->setText(QStringLiteral("%1年%2月").arg(m_month->yearShown()).arg(m_month->monthShown()));
}

void CalendarPopup::choose(QDate day) {
    Q_EMIT chosen(day);
    close();
}

void CalendarPopup::open() {
    const QWidget* field = parentWidget();
    const QSize size = sizeHint();
    const QRect room = field->screen()->availableGeometry();
    QPoint corner = field->mapToGlobal(QPoint(field->width() - size.width(), field->height() + fieldGap));
    if (corner.y() + size.height() > room.bottom()) {
        corner.setY(field->mapToGlobal(QPoint(0, -fieldGap)).y() - size.height());
    }
    corner.setX(std::clamp(corner.x(), room.left(), std::max(room.left(), room.right() - size.width())));
    move(corner);
    show();
    m_month->setFocus();
}

void CalendarPopup::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Colors& colors = colorsOf(palette());
    painter.fillRect(rect(), colors.menu);
    painter.setPen(colors.sheetBorder);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace kestu
