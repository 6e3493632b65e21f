# SPDX-License-Identifier: GPL-3.0-or-later
"""sway without a screen."""
import json

from desk import Desk, wait_until

CONFIG = """xwayland disable
output HEADLESS-1 mode 1280x800@60Hz
seat seat0 fallback true
focus_follows_mouse no
focus_on_window_activation focus
default_border none
workspace_layout tabbed
"""
# Without a screen, a graphics card or input devices.
WLROOTS = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}


def windows_in(node):
    if node.get("pid") and not node["nodes"]:
        yield node
    for child in node["nodes"] + node["floating_nodes"]:
        yield from windows_in(child)


class Sway(Desk):
    name = "sway"
    desktop = "sway"

    def start_desktop(self):
        self.put("sway.conf", CONFIG)
        for socket in self.runtime.glob("*way*"):
            socket.unlink()
        self.compositor = self.start("sway", "-c", self.home / "sway.conf", more=WLROOTS)
        ipc = wait_until(lambda: next(self.runtime.glob("sway-ipc.*"), None), "sway's socket")
        self.environment["SWAYSOCK"] = str(ipc)
        display = wait_until(lambda: next(self.runtime.glob("wayland-?"), None), "the display")
        self.environment["WAYLAND_DISPLAY"] = display.name
        wait_until(lambda: self.run("swaymsg", "-t", "get_version"), "sway")

    def windows(self):
        return list(windows_in(json.loads(self.run("swaymsg", "-t", "get_tree"))))

    def activate(self, app_id):
        self.run("swaymsg", f'[app_id="^{app_id}$"] focus')

    def front(self):
        return next((window["app_id"] for window in self.windows() if window["focused"]), "")

    def touch(self):
        self.run("swaymsg", "seat seat0 cursor move 5 5")

    def press_return(self):
        # Its keyboard is the only one: programs must have got to know it first.
        self.run("wtype", "-s", "500", "-k", "Return", "-s", "500")

    def picture(self, path):
        self.run("grim", path)
