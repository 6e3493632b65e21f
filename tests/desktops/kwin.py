# SPDX-License-Identifier: GPL-3.0-or-later
"""KWin without a screen, as Plasma's compositor, asked and led by small scripts."""
import contextlib
import itertools
import shutil

from desk import HERE, LOGIN, Desk, wait_until

WINDOWS = "(workspace.windowList ? workspace.windowList() : workspace.clientList())"
ACTIVATE = """const found = %s.find(window => window.resourceClass == "%%s");
if (found) workspace.activeWindow !== undefined ? workspace.activeWindow = found : workspace.activeClient = found;
""" % WINDOWS
FRONT = """const front = workspace.activeWindow !== undefined ? workspace.activeWindow : workspace.activeClient;
callDBus("jp.example.Ear", "/Ear", "jp.example.Ear", "Hear", "%s" + (front ? front.resourceClass : ""));
"""
RETURN, SHIFT = 28, 42


class KWin(Desk):
    name = "kwin"
    desktop = "KDE"
    number = itertools.count()

    def start_desktop(self):
        # The installed file has a capability that no container grants; a copy has none.
        program = self.folder / "kwin_wayland"
        if not program.exists():
            shutil.copy("/usr/bin/kwin_wayland", program)
            self.start("/usr/bin/python3", "-m", "dbusmock", "--session", "jp.example.Ear", "/Ear", "jp.example.Ear")
            wait_until(lambda: self.owner_of("jp.example.Ear"), "the ear")
            self.call("jp.example.Ear", "/Ear", "org.freedesktop.DBus.Mock.AddMethod", "jp.example.Ear", "Hear", "s",
                      "", f"open('{self.folder}/heard', 'w').write(args[0])")
        for socket in self.runtime.glob("kw-*"):
            socket.unlink()
        self.compositor = self.start(
            program, "--virtual", "--width", "1280", "--height", "800", "--socket", "kw-0", "--no-global-shortcuts",
            "--xwayland", f"sh -c 'echo $DISPLAY >{self.folder}/display'",
            more={"KWIN_WAYLAND_NO_PERMISSION_CHECKS": "1", "QT_QPA_PLATFORM": "", "KDE_FULL_SESSION": "true",
                  "KWIN_SCREENSHOT_NO_PERMISSION_CHECKS": "1"})
        self.environment["WAYLAND_DISPLAY"] = "kw-0"
        wait_until(lambda: self.owner_of("org.kde.KWin") and (self.runtime / "kw-0").exists(), "KWin")
        wait_until(lambda: self.call("org.kde.KWin", "/Scripting", "org.freedesktop.DBus.Peer.Ping"), "KWin's scripts")

    def open_terminal(self, app_id, title):
        """Through XWayland: foot divides by the size of a screen that has none."""
        number = wait_until(lambda: (self.folder / "display").exists() and
                            (self.folder / "display").read_text().strip(), "XWayland")
        # By its own argument it would get a title in an encoding that KWin does not read.
        self.start("xterm", "-class", app_id, "-name", app_id, "-u8", "-xrm", "*utf8Title: true", "-e", "sh", "-c",
                   f"printf '\\033]2;{title}\\007'; sleep 10000", more={"DISPLAY": number})
        self.bring_to_front(app_id)

    def do(self, script):
        name = f"probe{next(self.number)}"
        file = self.folder / name
        file.write_text(script)
        # Not by the number that loadScript answers: KWin gives numbers of scripts that still run once more.
        for method, arguments in (("loadScript", (str(file), name)), ("start", ()), ("unloadScript", (name,))):
            self.call("org.kde.KWin", "/Scripting", f"org.kde.kwin.Scripting.{method}", *arguments)

    def activate(self, app_id):
        self.do(ACTIVATE % app_id)

    def front(self):
        def ask():
            mark = f"{next(self.number)}:"
            heard = self.folder / "heard"
            self.do(FRONT % mark)
            with contextlib.suppress(TimeoutError):  # KWin reads scripts by and by, and we took it away again
                return wait_until(lambda: heard.exists() and heard.read_text().startswith(mark) and heard.read_text(),
                                  "an answer", 0.5)
        return wait_until(ask, "an answer of KWin").partition(":")[2]

    def touch(self):
        self.run("/usr/bin/python3", HERE / "press.py", SHIFT)

    def press_return(self):
        self.run("/usr/bin/python3", HERE / "press.py", RETURN)

    def lock(self):
        self.call("org.freedesktop.ScreenSaver", "/ScreenSaver", "org.freedesktop.ScreenSaver.Lock")
        wait_until(self.is_locked, "the lock")

    def unlock(self):
        self.at_login_session("org.freedesktop.DBus.Mock.EmitSignal", f"{LOGIN}.Session", "Unlock", "", "[]")
        wait_until(lambda: not self.is_locked(), "the end of the lock")

    def is_locked(self):
        return "true" in self.call("org.freedesktop.ScreenSaver", "/ScreenSaver",
                                   "org.freedesktop.ScreenSaver.GetActive")

    def scripts(self):
        return [file for file in self.runtime.rglob("kestu*") if file.suffix == ".js"]

    def stray(self):
        return ", ".join(file.name for file in self.scripts())

    def picture(self, path):
        self.run("/usr/bin/python3", HERE / "kwin_picture.py", path)
