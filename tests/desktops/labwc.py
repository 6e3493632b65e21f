# SPDX-License-Identifier: GPL-3.0-or-later
"""labwc without a screen. It has no interface of its own: windows are told by the protocol that task bars use."""
from desk import wait_until
from sway import WLROOTS, Sway


class Labwc(Sway):
    name = "labwc"
    desktop = "labwc"

    def start_desktop(self):
        self.put(".config/labwc/rc.xml", "<labwc_config><focus><followMouse>no</followMouse></focus></labwc_config>\n")
        for socket in self.runtime.glob("wayland-*"):
            socket.unlink()
        self.compositor = self.start("labwc", more=WLROOTS)
        display = wait_until(lambda: next(self.runtime.glob("wayland-?"), None), "the display")
        self.environment["WAYLAND_DISPLAY"] = display.name
        wait_until(lambda: "HEADLESS" in self.run("wlr-randr"), "labwc")

    def activate(self, app_id):
        self.run("wlrctl", "toplevel", "focus", f"app_id:{app_id}")

    def front(self):
        listed = self.run("wlrctl", "toplevel", "list", "state:activated")
        return listed.partition(":")[0].strip()

    def touch(self):
        self.run("wtype", "-k", "Shift_L")
