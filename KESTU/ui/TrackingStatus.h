// SPDX-License-Identifier: GPL-3.0-or-later
//
// At the sidebar's foot: whether KESTU records, and how much of today it has.
#pragma once

#include <QWidget>

namespace kestu {

class AppModel;
class ProjectDot;
class TextLabel;

class TrackingStatus final : public QWidget {
public:
    explicit TrackingStatus(AppModel& model);

protected:
    void changeEvent(QEvent* event) override;

private:
    void refreshState();
    void refreshTotal();

    AppModel& m_model;
    ProjectDot* m_dot;
    TextLabel* m_state;
    TextLabel* m_total;
};

} // namespace kestu
