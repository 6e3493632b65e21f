// SPDX-License-Identifier: GPL-3.0-or-later
//
// A date with hour and minute to be typed, stepped, or chosen from a calendar. It holds a time on the wall,
// without a zone.
#pragma once

#include <QDateTimeEdit>

class QToolButton;

namespace kestu {

class DateTimeField final : public QDateTimeEdit {
    Q_OBJECT

public:
    explicit DateTimeField(const QString& name, QWidget* parent = nullptr);

    /// Takes the earliest time away.
    void setWallTime(QDate date, QTime time);
    /// Nothing before it can be chosen; ignored when that is what is shown.
    void setEarliest(const QDateTime& earliest);

Q_SIGNALS:
    /// The user chose another time; not emitted by setWallTime.
    void edited();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showCalendar();

    QToolButton* m_calendarButton;
    QDateTime m_shown;
    bool m_isSet = false; // not by the user
};

} // namespace kestu
