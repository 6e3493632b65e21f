// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/DateTimeField.h"

#include "ui/controls/CalendarPopup.h"
#include "ui/theme/Icons.h"
#include "ui/theme/KestuStyle.h"

#include <QFocusEvent>
#include <QLineEdit>
#include <QLocale>
#include <QToolButton>

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
