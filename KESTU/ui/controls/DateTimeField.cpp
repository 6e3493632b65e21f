// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/DateTimeField.h"

#include "ui/theme/Icons.h"
#include "ui/theme/KestuStyle.h"

#include <QCalendarWidget>
#include <QLocale>
#include <QToolButton>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr QSize fieldSize{226, metrics::controlHeight};
constexpr int buttonWidth = 26;

} // namespace

DateTimeField::DateTimeField(const QString& name, QWidget* parent)
    : QDateTimeEdit(parent)
    , m_calendarButton(new QToolButton(this)) {
    setLocale(QLocale(QLocale::Japanese, QLocale::Japan));
    setDisplayFormat(QStringLiteral("yyyy/MM/dd H:mm"));
    setTimeSpec(Qt::UTC); // a zone of its own, so that no change of clocks leaves a time out
    setFixedSize(fieldSize);
    setAccessibleName(name);
    reserveTrailing(this, buttonWidth);
    m_calendarButton->setIcon(iconOf(u"calendar", ink::secondary));
    m_calendarButton->setIconSize({metrics::iconSmall, metrics::iconSmall});
    m_calendarButton->setAccessibleName(name + QStringLiteral("の日付を選ぶ"));
    m_calendarButton->setToolTip(QStringLiteral("カレンダー"));
    m_calendarButton->setCursor(Qt::ArrowCursor);
    m_calendarButton->setFocusPolicy(Qt::NoFocus); // the day can be stepped in the field
    setBorderless(m_calendarButton);
    connect(m_calendarButton, &QToolButton::clicked, this, &DateTimeField::showCalendar);
    connect(this, &QDateTimeEdit::dateTimeChanged, this, [this] {
        if (!m_isSet) {
            Q_EMIT edited();
        }
    });
}

void DateTimeField::setWallTime(QDate date, QTime time) {
    m_isSet = true;
    setDateTime(QDateTime(date, time, Qt::UTC));
    m_isSet = false;
}

void DateTimeField::resizeEvent(QResizeEvent* event) {
    QDateTimeEdit::resizeEvent(event);
    m_calendarButton->setGeometry(width() - buttonWidth, 2, buttonWidth - 2, height() - 4);
}

void DateTimeField::showCalendar() {
    auto* popup = new QWidget(this, Qt::Popup);
    popup->setAttribute(Qt::WA_DeleteOnClose);
    auto* calendar = new QCalendarWidget;
    calendar->setLocale(locale());
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calendar->setMinimumDate(minimumDate());
    calendar->setSelectedDate(date());
    auto* layout = new QVBoxLayout(popup);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->addWidget(calendar);
    const auto choose = [this, popup](QDate day) {
        setDate(day);
        popup->close();
    };
    connect(calendar, &QCalendarWidget::clicked, this, choose);
    connect(calendar, &QCalendarWidget::activated, this, choose);
    popup->move(mapToGlobal(QPoint(width() - popup->sizeHint().width(), height() + 2)));
    popup->show();
    calendar->setFocus();
}

} // namespace kestu
