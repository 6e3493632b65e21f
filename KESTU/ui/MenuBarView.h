// SPDX-License-Identifier: GPL-3.0-or-later
//
// The small panel of the status item: how much of today is recorded, what is being recorded, the largest
// projects, and the three controls. It closes when it loses the focus. The shell makes one for each opening.
#pragma once

#include <QWidget>

namespace kestu {

class AppModel;
class Commands;
class TextLabel;

class MenuBarView final : public QWidget {
public:
    MenuBarView(AppModel& model, Commands& commands);

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

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
};

/// Where the panel stands: beside the status item, below it where there is room, else above; without its
/// place (`anchor` is empty) beside the cursor. Always inside the screen.
[[nodiscard]] QPoint panelPosition(const QSize& panel, const QRect& anchor, const QPoint& cursor,
                                   const QRect& screen);

} // namespace kestu
