# SPDX-License-Identifier: GPL-3.0-or-later
"""A made-up accessibility bus: `desk` is its launcher and registry, `program FILE [NAME]` one program on it,
which has that name on the session's bus.

FILE describes the program's windows, one a line, and is read again with every question, so that a test changes
the program by writing it: NAME|ATTRIBUTE|VALUE|LOOKS, with a * before the active one. The window's page has that
attribute, and is found only after it was looked for in vain LOOKS times. A window that is only a name has no
page. SESSION and ACCESSIBILITY in the environment are the buses' addresses.

SIGUSR1 has a program say that its active window was activated, or its first one deactivated; SIGUSR2, that the name
of its active window is another one.
"""

import os
import signal
import sys

import dbus
import dbus.bus
import dbus.lowlevel
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

REGISTRY = "org.a11y.atspi.Registry"
ROOT = "/org/a11y/atspi/accessible/root"
ACTIVE, SHOWING, WEB_DOCUMENT = 1, 25, 95


def emit(bus, path, kind, event, detail=""):
    message = dbus.lowlevel.SignalMessage(path, f"org.a11y.atspi.Event.{kind}", event)
    message.append(detail, 0, 0, "", {}, signature="siiva{sv}")
    bus.send_message(message)


class Launcher(dbus.service.Object):
    enabled = False

    @dbus.service.method("org.a11y.Bus", out_signature="s")
    def GetAddress(self):
        return os.environ["ACCESSIBILITY"]

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        assert (interface, name) == ("org.a11y.Status", "IsEnabled")
        return dbus.Boolean(self.enabled)

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ssv")
    def Set(self, interface, name, value):
        assert (interface, name) == ("org.a11y.Status", "IsEnabled")
        self.enabled = bool(value)
        self.PropertiesChanged(interface, {name: value}, [])

    @dbus.service.signal(dbus.PROPERTIES_IFACE, signature="sa{sv}as")
    def PropertiesChanged(self, interface, changed, invalidated):
        pass


class Registry(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/org/a11y/atspi/registry")
        self.listening = False
        self.roots = []

    @dbus.service.method(REGISTRY, in_signature="sass")
    def RegisterEvent(self, event, properties, program):
        self.listening = self.listening or event == "window:activate"

    @dbus.service.method(REGISTRY, out_signature="b")
    def IsListening(self):
        return self.listening

    @dbus.service.method(REGISTRY, in_signature="o", sender_keyword="sender")
    def Embed(self, path, sender):
        self.roots.append((sender, path))
        emit(self.connection, ROOT, "Object", "ChildrenChanged", "add")


class RegistryRoot(dbus.service.Object):
    def __init__(self, bus, registry):
        super().__init__(bus, ROOT)
        self.registry = registry

    @dbus.service.method("org.a11y.atspi.Accessible", out_signature="a(so)")
    def GetChildren(self):
        return dbus.Array(self.registry.roots, signature="(so)")


class Program(dbus.service.Object):
    def __init__(self, bus, file):
        super().__init__(bus, ROOT)
        self.bus = bus
        self.file = file
        self.objects = []

    def windows(self):
        with open(self.file, encoding="utf-8") as description:
            windows = [(line.rstrip("\n") + "|||").split("|")[:4] for line in description]
        while len(self.objects) < len(windows):
            self.objects.append(Window(self, len(self.objects)))
        return windows

    @dbus.service.method("org.a11y.atspi.Accessible", out_signature="a(so)")
    def GetChildren(self):
        return dbus.Array([(self.bus.get_unique_name(), f"/{i}") for i in range(len(self.windows()))],
                          signature="(so)")


    def active(self):
        """The number of the active window; none where there is none."""
        return next((i for i, window in enumerate(self.windows()) if window[0].startswith("*")), None)

    def tell_activation(self):
        active = self.active()
        emit(self.bus, f"/{active or 0}", "Window", "Deactivate" if active is None else "Activate")
        return True

    def tell_name(self):
        emit(self.bus, f"/{self.active() or 0}", "Object", "PropertyChange", "accessible-name")
        return True


class Window(dbus.service.Object):
    """A window, and as its own only child the page in it."""

    def __init__(self, program, index):
        super().__init__(program.bus, f"/{index}")
        self.program = program
        self.index = index
        self.looks = {}

    def description(self):
        return self.program.windows()[self.index]

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return self.description()[0].removeprefix("*")

    @dbus.service.method("org.a11y.atspi.Accessible", out_signature="au")
    def GetState(self):
        # As one browser does: no window is marked as long as nobody listens.
        listening = self.program.bus.call_blocking(REGISTRY, "/org/a11y/atspi/registry", REGISTRY,
                                                   "IsListening", "", ())
        active = self.description()[0].startswith("*") and listening
        return dbus.Array([(1 << ACTIVE if active else 0) | (1 << SHOWING), 0], signature="u")

    @dbus.service.method("org.a11y.atspi.Collection", in_signature="(aiia{ss}iaiiasib)uib",
                         out_signature="a(so)")
    def GetMatches(self, rule, order, count, traverse):
        states, roles = (sum((word & 0xFFFFFFFF) << 32 * i for i, word in enumerate(rule[part]))
                         for part in (0, 4))
        _, attribute, value, looks = self.description()
        self.looks[value] = self.looks.get(value, 0) + 1
        found = (states == 1 << SHOWING and roles == 1 << WEB_DOCUMENT and traverse and not rule[8]
                 and attribute and self.looks[value] > int(looks or 0))
        return dbus.Array([(self.program.bus.get_unique_name(), f"/{self.index}")] if found else [],
                          signature="(so)")

    @dbus.service.method("org.a11y.atspi.Document", out_signature="a{ss}")
    def GetAttributes(self):
        _, attribute, value, _ = self.description()
        return dbus.Dictionary({attribute: value}, signature="ss")


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    accessibility = dbus.bus.BusConnection(os.environ["ACCESSIBILITY"])
    loop = GLib.MainLoop()
    if sys.argv[1] == "desk":
        session = dbus.bus.BusConnection(os.environ["SESSION"])
        kept = [Launcher(session, "/org/a11y/bus"), RegistryRoot(accessibility, Registry(accessibility))]
        accessibility.request_name(REGISTRY)
        session.request_name("org.a11y.Bus")
    else:
        program = Program(accessibility, sys.argv[2])
        GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, signal.SIGUSR1, program.tell_activation)
        GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, signal.SIGUSR2, program.tell_name)
        kept = [program]
        if len(sys.argv) > 3:
            session = dbus.bus.BusConnection(os.environ["SESSION"])
            session.request_name(sys.argv[3])
            kept.append(session)
        accessibility.call_blocking(REGISTRY, "/org/a11y/atspi/registry", REGISTRY, "Embed", "o", (ROOT,))
    print("ready", file=sys.stderr, flush=True)
    loop.run()
    del kept


main()
