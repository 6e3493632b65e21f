// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/DateTimeField.h"

#include "ui/controls/CalendarPopup.h"
#include "ui/theme/Icons.h"
#include "ui/theme/KestuStyle.h"

#include <QFocusEvent>
#include <QLineEdit>
#include <QLocale>
#include <QTimeZone>
#include <QToolButton>

#include <utility>

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
    // A zone of its own, so that no change of clocks leaves a time out. By the property, for the function to
    // set it is another one from Qt 6.7 on.
    setProperty("timeSpec", QVariant::fromValue(Qt::UTC));
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
    connect(this, &QDateTimeEdit::dateTimeChanged, this, [this](const QDateTime& shown) {
        // Return reports a change also where there is none.
        if (shown != std::exchange(m_shown, shown) && !m_isSet) {
            Q_EMIT edited();
        }
    });
}

void DateTimeField::setWallTime(QDate date, QTime time) {
    m_isSet = true;
    clearMinimumDateTime();
    setDateTime(QDateTime(date, time, QTimeZone::utc()));
    m_isSet = false;
}

void DateTimeField::setEarliest(const QDateTime& earliest) {
    if (earliest <= dateTime()) { // else it would move what is shown
        m_isSet = true;
        setMinimumDateTime(earliest);
        m_isSet = false;
    }
}

void DateTimeField::resizeEvent(QResizeEvent* event) {
    QDateTimeEdit::resizeEvent(event);
    m_calendarButton->setGeometry(width() - buttonWidth, 2, buttonWidth - 2, height() - 4);
}

void DateTimeField::showCalendar() {
    auto* popup = new CalendarPopup(date(), minimumDate(), this);
    connect(popup, &CalendarPopup::chosen, this, &QDateTimeEdit::setDate);
    popup->open();
}

void DateTimeField::focusInEvent(QFocusEvent* event) {
    QDateTimeEdit::focusInEvent(event);
    const auto* edit = lineEdit();
    if (edit->hasSelectedText() && edit->selectionStart() == 0) { // it came from before, or anew
        setSelectedSection(QDateTimeEdit::HourSection);           // seldom it is the year that is wrong
    }
}

} // namespace kestu
