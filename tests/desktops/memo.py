# SPDX-License-Identifier: GPL-3.0-or-later
"""memo.py APP_ID TITLE: a window. Lines on standard input: "title TEXT", "launch PROGRAM" (as a launcher does,
when Return is pressed in the window, with a token for its window), "end"."""
import sys

import gi
gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, Gio, GLib, Gtk  # noqa: E402


def main():
    app_id, title = sys.argv[1:]
    GLib.set_prgname(app_id)
    window = Gtk.Window(title=title)
    window.set_default_size(500, 300)
    window.add(Gtk.Label(label=title))
    window.connect("destroy", Gtk.main_quit)
    program = []

    def launch(_, event):
        if event.keyval == Gdk.KEY_Return and program:
            app = Gio.AppInfo.create_from_commandline(program.pop(), None, Gio.AppInfoCreateFlags.SUPPORTS_STARTUP_NOTIFICATION)
            context = window.get_display().get_app_launch_context()
            context.set_timestamp(event.time)
            app.launch([], context)
    window.connect("key-press-event", launch)

    def hear(_source, _condition):
        verb, _, rest = sys.stdin.readline().rstrip("\n").partition(" ")
        if verb == "title":
            window.set_title(rest)
        elif verb == "launch":
            program.append(rest)
        else:
            Gtk.main_quit()
        return True
    GLib.io_add_watch(sys.stdin.fileno(), GLib.IO_IN | GLib.IO_HUP, hear)
    window.show_all()
    Gtk.main()


main()
