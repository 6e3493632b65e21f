// SPDX-License-Identifier: GPL-3.0-or-later
//
// The timeline's right column: the selected activity, the times without a record, and what belongs to no
// project yet. It scrolls on its own and follows the model. The timeline owns it.
#pragma once

#include <QWidget>

class QScrollArea;
class QVBoxLayout;

namespace kestu {

class ActivityDetail;
class AppModel;
class Divider;
class GapList;
class UnassignedList;

class SidePanel final : public QWidget {
    Q_OBJECT

public:
    explicit SidePanel(AppModel& model, QWidget* parent = nullptr);

    static constexpr int preferredWidth = 320;

    /// The first of its controls that answers; null when there is none.
    [[nodiscard]] QWidget* firstStop() const;

private:
    [[nodiscard]] QVBoxLayout* makeColumn();
    void showSelected();
    void showDividers();
    void orderTabs();
    void scrollToTop();

    AppModel& m_model;
    QScrollArea* m_scroll;
    ActivityDetail* m_detail;
    Divider* m_belowDetail;
    GapList* m_gaps;
    Divider* m_belowGaps;
    UnassignedList* m_unassigned;
};

} // namespace kestu
