// SPDX-License-Identifier: GPL-3.0-or-later
//
// The small panel of the status item: how much of today is recorded, what is being recorded, the largest
// projects, and the three controls. It closes when it loses the focus. Where windows cannot be placed it is
// an ordinary small window. The shell makes one for each opening.
#pragma once

#include <QTimer>
#include <QWidget>

namespace kestu {

class AppModel;
class Commands;
class TextLabel;

class MenuBarView final : public QWidget {
    Q_OBJECT

public:
    MenuBarView(AppModel& model, Commands& commands);

Q_SIGNALS:
    /// It is as high as what it holds, and must be placed anew.
    void resized();
    void moved();

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;

private:
    [[nodiscard]] QLayout* makeControls(Commands& commands);
    void refreshTotal();
    void refreshNow();
    void refreshProjects();

    AppModel& m_model;
    TextLabel* m_total;
    QWidget* m_now;
    TextLabel* m_nowApp;
    TextLabel* m_nowTitle;
    QWidget* m_projects;
    QTimer m_unfocused;
};

/// Where the panel stands: at a side of the anchor (the status item, or where the cursor was) where it covers
/// nothing of it, wholly inside `room`. Below or above first, unless the anchor is in a column at the side.
[[nodiscard]] QPoint panelPosition(const QSize& panel, const QRect& anchor, const QRect& room);

} // namespace kestu
