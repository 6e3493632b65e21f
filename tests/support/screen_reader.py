# SPDX-License-Identifier: GPL-3.0-or-later
"""What a screen reader hears of a program: its events and its objects on the accessibility bus."""
import contextlib
import time

import dbus
import dbus.bus
import dbus.mainloop.glib
from gi.repository import GLib

ACCESSIBLE = "org.a11y.atspi.Accessible"
TEXT = "org.a11y.atspi.Text"
EVENTS = ("object:state-changed:focused", "object:state-changed:showing", "object:state-changed:active",
          "object:property-change:accessible-name", "object:text-selection-changed", "window:activate")
STATES = {1: "active", 4: "checked", 8: "enabled", 9: "expandable", 10: "expanded", 11: "focusable", 12: "focused",
          16: "modal", 23: "selected", 24: "sensitive", 25: "showing", 33: "required", 41: "checkable"}
ROLES = {7: "check box", 11: "combo box", 16: "dialog", 20: "filler", 23: "frame", 29: "label", 31: "list",
         32: "list item", 39: "panel", 43: "push button", 44: "radio button", 52: "spin button", 55: "table",
         56: "table cell", 61: "text", 67: "unknown", 75: "application", 80: "chart", 88: "link",
         101: "notification"}
PATIENCE = 10


def names_of(words):
    """The names of the states in a bit set."""
    bits = sum(int(word) << 32 * i for i, word in enumerate(words))
    return {name for bit, name in STATES.items() if bits >> bit & 1}


class Thing:
    """One object of a program. Everything is asked anew, as nothing may be old."""

    def __init__(self, bus, service, path):
        self.bus, self.service, self.path = bus, str(service), str(path)

    def __eq__(self, other):
        return isinstance(other, Thing) and (self.service, self.path) == (other.service, other.path)

    def __hash__(self):
        return hash((self.service, self.path))

    def ask(self, interface, method, signature="", *arguments):
        return self.bus.call_blocking(self.service, self.path, interface, method, signature, arguments)

    def get(self, name, interface=ACCESSIBLE):
        return self.ask(dbus.PROPERTIES_IFACE, "Get", "ss", interface, name)

    name = property(lambda self: str(self.get("Name")))
    description = property(lambda self: str(self.get("Description")))
    role = property(lambda self: ROLES.get(int(self.ask(ACCESSIBLE, "GetRole")), "other"))
    states = property(lambda self: names_of(self.ask(ACCESSIBLE, "GetState")))
    parent = property(lambda self: Thing(self.bus, *self.get("Parent")))

    @property
    def children(self):
        return [Thing(self.bus, *child) for child in self.ask(ACCESSIBLE, "GetChildren")]

    @property
    def ancestors(self):
        """From the parent to the window."""
        found, thing = [], self.parent
        while thing.role != "application":
            found.append(thing)
            thing = thing.parent
        return found

    @property
    def text(self):
        """What stands in a field or a picker; None in what holds no text."""
        if TEXT not in self.ask(ACCESSIBLE, "GetInterfaces"):
            return None
        return str(self.ask(TEXT, "GetText", "ii", 0, self.get("CharacterCount", TEXT)))

    def press(self):
        self.ask("org.a11y.atspi.Action", "DoAction", "i", 0)

    def find(self, name, role):
        """The shown object of that name and role below this one; None if there is none."""
        if "showing" not in self.states:
            return None
        if (self.name, self.role) == (name, role):
            return self
        return next((found for child in self.children if (found := child.find(name, role))), None)


class Reader:
    """Listens to everything that a screen reader listens to, from its construction on."""

    def __init__(self):
        dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
        launcher = dbus.SessionBus().get_object("org.a11y.Bus", "/org/a11y/bus", introspect=False)
        self.bus = dbus.bus.BusConnection(launcher.GetAddress(dbus_interface="org.a11y.Bus"))
        self.events = []  # (kind, thing, value)
        for interface in ("Object", "Window"):
            self.bus.add_signal_receiver(self._hear, dbus_interface="org.a11y.atspi.Event." + interface,
                                         member_keyword="member", sender_keyword="sender", path_keyword="path")
        for event in EVENTS:
            self.bus.call_blocking("org.a11y.atspi.Registry", "/org/a11y/atspi/registry",
                                   "org.a11y.atspi.Registry", "RegisterEvent", "sass", (event, [], ""))

    def _hear(self, detail, value, *_, member, sender, path):
        self.events.append((f"{member}:{detail}".rstrip(":"), Thing(self.bus, sender, path), int(value)))

    def programs(self):
        root = Thing(self.bus, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
        return [program for program in root.children if program.role == "application"]

    def _listen(self):
        while GLib.MainContext.default().iteration(False):
            pass

    def forget(self):
        """What was heard by now."""
        self._listen()
        self.events.clear()

    def heard(self, kind, value=1):
        """The things of the events of that kind that were heard by now."""
        self._listen()
        return [thing for heard, thing, heard_value in self.events
                if heard == kind and value in (None, heard_value)]

    def wait(self, condition, what, patience=PATIENCE):
        end = time.monotonic() + patience
        GLib.timeout_add(20, lambda: time.monotonic() < end)  # so that an iteration ends without an event, too
        while time.monotonic() < end:
            with contextlib.suppress(dbus.DBusException):  # what is asked may vanish meanwhile
                if result := condition():
                    return result
            GLib.MainContext.default().iteration(True)
        raise AssertionError(f"waited in vain for {what}")
