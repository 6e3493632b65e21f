# SPDX-License-Identifier: GPL-3.0-or-later
"""press.py KEYCODE: presses a key in KWin, which lets only test runs do so."""
import sys

from wire import Connection, Text


def main():
    wayland = Connection()
    keyboard = wayland.bind("org_kde_kwin_fake_input", 4)
    wayland.request(keyboard, 0, Text("test"), Text("test"))  # authenticate
    for state in (1, 0):
        wayland.request(keyboard, 10, int(sys.argv[1]), state)  # keyboard_key
    wayland.round_trip()


main()
