// SPDX-License-Identifier: GPL-3.0-or-later
//
// The left column of the main window: the screens to choose from, and at its foot whether KESTU records.
#pragma once

#include <QWidget>

class QListWidget;

namespace kestu {

class AppModel;
class Commands;

class Sidebar final : public QWidget {
public:
    Sidebar(AppModel& model, Commands& commands);

    [[nodiscard]] QWidget* screenList() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refreshScreen();
    void refreshBadge();

    AppModel& m_model;
    QListWidget* m_list;
};

} // namespace kestu
