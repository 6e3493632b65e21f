// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which period the report is about, and the controls that choose another one. Owned by the report screen,
// which holds the period and shows it here.
#pragma once

#include "reports/ReportPeriod.h"

#include <QWidget>

class QBoxLayout;
class QPushButton;

namespace kestu {

class IconButton;
class SegmentedPicker;
class TextLabel;

class ReportHeader final : public QWidget {
    Q_OBJECT

public:
    explicit ReportHeader(QWidget* parent = nullptr);

    /// There is nothing ahead of the period that holds the present.
    void display(ReportPeriod period, const QString& title, bool holdsNow);

Q_SIGNALS:
    void periodChosen(kestu::ReportPeriod period);
    void stepped(kestu::StepDirection direction);
    void nowRequested();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    TextLabel* m_title;
    SegmentedPicker* m_picker;
    IconButton* m_back;
    QPushButton* m_now;
    IconButton* m_forward;
    QBoxLayout* m_row;
    QBoxLayout* m_controls;
};

} // namespace kestu
