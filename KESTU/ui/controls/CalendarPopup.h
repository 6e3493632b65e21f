// SPDX-License-Identifier: GPL-3.0-or-later
//
// A month to choose a day from, below the field that asks for one. It belongs to that field and deletes
// itself once a day is chosen or the user turns away.
#pragma once

#include <QDate>
#include <QWidget>

class QCalendarWidget;

namespace kestu {

class TextLabel;

class CalendarPopup final : public QWidget {
    Q_OBJECT

public:
    /// `day` is the one that holds; none before `earliest` can be chosen.
    CalendarPopup(QDate day, QDate earliest, QWidget* field);

    /// Right-aligned with the field, and inside the screen.
    void open();

Q_SIGNALS:
    void chosen(QDate day);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QWidget* makeHeader();
    void setUpMonth(QDate day, QDate earliest);
    void showMonth();
    void choose(QDate day);

    TextLabel* m_title;
    QCalendarWidget* m_month;
};

} // namespace kestu
