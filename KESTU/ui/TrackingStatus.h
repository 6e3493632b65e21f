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

    /// The dot alone, with the texts as its tooltip.
    void setCompact(bool compact);

protected:
    void changeEvent(QEvent* event) override;

private:
    void refreshState();
    void refreshTotal();
    void refreshHelp();

    AppModel& m_model;
    ProjectDot* m_dot;
    TextLabel* m_state;
    TextLabel* m_total;
};

} // namespace kestu
