// SPDX-License-Identifier: GPL-3.0-or-later
//
// A property of the window that manages something for the whole X screen, as a tray or the settings, whoever
// that is at the moment: managers come late, and others take their place. On a connection of its own.
#pragma once

#include "platform/linux/Xcb.h"

#include <QObject>
#include <QSocketNotifier>

namespace kestu {

class ManagerProperty final : public QObject {
    Q_OBJECT

public:
    /// `selection` is the manager's, without the number of the screen that ends it: "_XSETTINGS_S".
    ManagerProperty(std::unique_ptr<Xcb> xcb, const QByteArray& selection, const char* property);

    /// Empty when there is no manager, or when it has no such property.
    [[nodiscard]] const XProperty& value() const { return m_value; }

Q_SIGNALS:
    void changed();

private:
    void follow();
    void read();
    void takeEvents();
    [[nodiscard]] bool concerns(const xcb_generic_event_t& event);

    std::unique_ptr<Xcb> m_xcb;
    xcb_atom_t m_selection;
    xcb_atom_t m_property;
    xcb_atom_t m_announcement;
    xcb_window_t m_manager = XCB_NONE;
    XProperty m_value;
    QSocketNotifier m_notifier;
};

} // namespace kestu
