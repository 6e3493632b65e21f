# SPDX-License-Identifier: GPL-3.0-or-later
"""GNOME Shell without a screen, with KESTU's extension as a package would have installed it."""
import pathlib
import shutil
import subprocess

from desk import HERE, ROOT, Desk, wait_until

EXTENSION = "kestu@kestu.example"
RETURN, SHIFT = 28, 42
IDLE_FLAG = 8
FIND = 'global.get_window_actors().map(a => a.meta_window).find(w => w.get_wm_class() == "%s")'


class Gnome(Desk):
    name = "gnome"
    desktop = "GNOME"

    def start_desktop(self):
        version = self.run("gnome-shell", "--version").split()[-1]
        kind = "modules" if int(version.partition(".")[0]) >= 45 else "imports"
        place = self.home / ".local/share/gnome-shell/extensions" / EXTENSION
        shutil.copytree(ROOT / "packaging/gnome-extension" / kind, place, dirs_exist_ok=True)
        self.start_login_screen()
        for socket in self.runtime.glob("gs-*"):
            socket.unlink()
        self.compositor = self.start("gnome-shell", "--headless", "--wayland", "--no-x11", "--unsafe-mode",
                                     "--wayland-display", "gs-0", "--virtual-monitor", "1280x800")
        self.environment["WAYLAND_DISPLAY"] = "gs-0"
        wait_until(lambda: self.owner_of("org.gnome.Shell") and (self.runtime / "gs-0").exists(), "GNOME Shell")
        wait_until(lambda: self.evaluate("Main.layoutManager._startingUp") == "false", "the end of its start")
        self.input = self.start("/usr/bin/python3", HERE / "gnome_input.py", stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE)
        self.input.stdout.readline()
        self.evaluate("Main.overview.hide()")
        self.call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell.Extensions.EnableExtension", EXTENSION)

    def start_login_screen(self):
        """Without it there is no lock."""
        name = "org.gnome.DisplayManager"
        path = f"/{name.replace('.', '/')}/Manager"
        if "true" in self.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus.NameHasOwner", name,
                               bus="--system"):
            return
        self.start("/usr/bin/python3", "-m", "dbusmock", "--system", name, path, f"{name}.Manager")
        wait_until(lambda: "true" in self.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus.NameHasOwner",
                                               name, bus="--system"), "the login screen")
        self.call(name, path, "org.freedesktop.DBus.Mock.AddProperty", f"{name}.Manager", "Version", "<'48.0'>",
                  bus="--system")

    def evaluate(self, code):
        """As text; empty on an error."""
        answer = self.call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell.Eval", code)
        return answer[len("(true, '"):-len("')")].strip('"') if answer.startswith("(true") else ""

    def activate(self, app_id):
        self.evaluate(f"{FIND % app_id}.activate(global.get_current_time())")

    def front(self):
        return self.evaluate("global.display.focus_window.get_wm_class()")

    def press(self, code):
        self.input.stdin.write(f"{code}\n".encode())
        self.input.stdin.flush()

    def touch(self):
        self.press(SHIFT)

    def press_return(self):
        self.press(RETURN)

    def play_film(self, app_id):
        """The shell leaves it to the session's manager, which players tell; no such manager runs here."""
        name, path, mock = "org.gnome.SessionManager", "/org/gnome/SessionManager", "org.freedesktop.DBus.Mock"
        self.start("/usr/bin/python3", "-m", "dbusmock", "--session", name, path, name)
        wait_until(lambda: self.owner_of(name), "the session's manager")
        self.call(name, path, f"{mock}.AddObject", f"{path}/Inhibitor1", f"{name}.Inhibitor", "{}",
                  f"[('GetAppId', '', 's', 'ret = \"{app_id}\"'), ('GetFlags', '', 'u', 'ret = {IDLE_FLAG}')]")
        self.call(name, path, f"{mock}.AddMethod", name, "GetInhibitors", "", "ao", f"ret = ['{path}/Inhibitor1']")
        player = self.start("/usr/bin/python3", HERE / "memo.py", app_id, "映画", stdin=subprocess.PIPE)
        self.callback(player.stdin.close)
        self.bring_to_front(app_id)
        return player

    def lock(self):
        if not pathlib.Path("/run/systemd/seats").exists():
            raise RuntimeError("GNOME Shell does not lock where /run/systemd/seats is missing")
        self.call("org.gnome.Shell.ScreenShield", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver.Lock")
        wait_until(self.is_locked, "the lock")

    def unlock(self):
        self.call("org.gnome.Shell.ScreenShield", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver.SetActive",
                  "false")
        wait_until(lambda: not self.is_locked(), "the end of the lock")

    def is_locked(self):
        return "true" in self.call("org.gnome.Shell.ScreenShield", "/org/gnome/ScreenSaver",
                                   "org.gnome.ScreenSaver.GetActive")

    def picture(self, path):
        self.call("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot",
                  "org.gnome.Shell.Screenshot.Screenshot", "false", "false", str(path))
