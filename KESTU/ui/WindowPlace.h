// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the main window stands: as it was when it was last closed, and always inside a screen that is there
// now. Where windows have no places, its size alone. Belongs to the window; the shell makes it.
#pragma once

#include <QList>
#include <QMargins>
#include <QObject>
#include <QRect>
#include <QTimer>

class QScreen;
class QWidget;

namespace kestu {

class AppModel;

class WindowPlace final : public QObject {
public:
    /// Before the window is first shown.
    WindowPlace(QWidget& window, AppModel& model);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void restore();
    void remember();
    void follow(QScreen* screen);
    void fit();

    QWidget& m_window;
    AppModel& m_model;
    QTimer m_fitTimer;
};

/// Whether windows may say where they stand. Wayland's compositors let none, and tell none where it stands.
[[nodiscard]] bool mayPlaceWindows();

/// `wanted` without its `frame`, moved and where needed made smaller so that it fits with its frame into the
/// one of these screens of which it covers most; into the first one when it covers nothing of any.
[[nodiscard]] QRect fitted(const QRect& wanted, const QMargins& frame, const QList<QRect>& screens);

} // namespace kestu
