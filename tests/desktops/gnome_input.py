# SPDX-License-Identifier: GPL-3.0-or-later
"""A remote desktop session of GNOME Shell, without which a seat without devices has no keyboard and windows get no
focus. Presses each key whose code comes on standard input."""
import sys
import time

from gi.repository import Gio, GLib

SERVICE = "org.gnome.Mutter.RemoteDesktop"
SHIFT = 42


def main():
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)

    def call(path, interface, method, arguments=None):
        return bus.call_sync(SERVICE, path, interface, method, arguments, None, 0, 5000, None)
    session = call("/org/gnome/Mutter/RemoteDesktop", SERVICE, "CreateSession").unpack()[0]
    call(session, f"{SERVICE}.Session", "Start")

    def press(code):
        for is_down in (True, False):
            call(session, f"{SERVICE}.Session", "NotifyKeyboardKeycode", GLib.Variant("(ub)", (code, is_down)))
    time.sleep(0.3)  # for the devices, which nobody announces
    press(SHIFT)
    print("ready", flush=True)
    for line in sys.stdin:
        press(int(line))


main()
