# SPDX-License-Identifier: GPL-3.0-or-later
"""A private place to run a desktop in: a home folder, a session bus, a system bus with a made-up login manager.
What a desktop adds to it is in a file of its own name."""
import contextlib
import ctypes
import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
KESTU = pathlib.Path(os.environ.get("KESTU_PROGRAM", ROOT / "build/release/kestu"))
PATIENCE = 30  # seconds; machines are slow
LOGIN = "org.freedesktop.login1"


def wait_until(condition, what, patience=PATIENCE):
    end = time.monotonic() + patience
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.02)
    raise TimeoutError(f"waited in vain for {what}")


class Desk(contextlib.ExitStack):
    """The services of a session without a desktop. Every process that is started here ends with it."""

    name = ""
    desktop = ""  # as XDG_CURRENT_DESKTOP has it

    def __init__(self, where_to_keep_the_log):
        super().__init__()
        self.kept_log = where_to_keep_the_log / f"{self.name}.log"
        try:
            self.set_up()
        except BaseException:
            self.__exit__(*sys.exc_info())
            raise

    def __exit__(self, kind, *details):
        if kind:
            shutil.copy(self.folder / "log", self.kept_log)
        return super().__exit__(kind, *details)

    def set_up(self):
        self.folder = pathlib.Path(self.enter_context(
            tempfile.TemporaryDirectory(prefix="kestu-desktop.", ignore_cleanup_errors=True)))
        self.callback(end_descendants)
        self.log = self.enter_context(open(self.folder / "log", "w+"))
        self.home = self.folder / "home"
        self.runtime = self.folder / "run"
        for folder in (self.home, self.runtime):
            folder.mkdir(mode=0o700)
        self.store = self.home / ".local/share/KESTU/kestu.sqlite"
        self.environment = {
            **{name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")},
            "PATH": os.environ["PATH"], "HOME": str(self.home), "LC_ALL": "C.UTF-8", "LANGUAGE": "ja",
            "XDG_RUNTIME_DIR": str(self.runtime), "XDG_SESSION_TYPE": "wayland", "XDG_SESSION_ID": "auto",
            "XDG_CURRENT_DESKTOP": self.desktop, "GSETTINGS_BACKEND": "keyfile", "NO_AT_BRIDGE": "0"}
        self.put(".config/KESTU/settings.json", '{"welcomeShown": true, "idleMinutes": 1}')
        for name, ja in (("memo", "メモ帳"), ("terminal", "端末"), ("film", "映画館")):
            self.put(f".local/share/applications/jp.example.{name}.desktop",
                     f"[Desktop Entry]\nType=Application\nName={name}\nName[ja]={ja}\nExec=true\n")
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = self.start_bus()
        self.start_login()
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.start_bus()
        self.start("/usr/libexec/at-spi-bus-launcher", "--launch-immediately")
        wait_until(lambda: self.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress"),
                   "the accessibility bus")
        self.start_desktop()

    def put(self, path, text):
        file = self.home / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)

    def start(self, *command, more=None, **options):
        return subprocess.Popen(list(map(str, command)), env={**self.environment, **(more or {})},
                                **{"stdin": subprocess.DEVNULL, "stdout": self.log, "stderr": self.log, **options})

    def run(self, *command):
        return subprocess.run(list(map(str, command)), env=self.environment, stdout=subprocess.PIPE,
                              stderr=self.log, text=True, timeout=PATIENCE).stdout

    def start_bus(self):
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE)
        self.callback(bus.stdout.close)
        return bus.stdout.readline().decode().strip()

    def call(self, service, path, method, *arguments, bus="--session"):
        """The answer as gdbus writes it; empty on an error."""
        return self.run("gdbus", "call", bus, "--dest", service, "--object-path", path, "--method", method,
                        "--", *arguments).strip()

    def owner_of(self, name):
        answer = self.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus.NameHasOwner", name)
        return answer == "(true,)"

    # The login manager

    def start_login(self):
        self.start("/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind")
        wait_until(lambda: self.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus.NameHasOwner", LOGIN,
                                     bus="--system") == "(true,)", "the login manager")
        self.call(LOGIN, "/org/freedesktop/login1", "org.freedesktop.DBus.Mock.AddSession", "auto", "seat0",
                  str(os.getuid()), "user", "true", bus="--system")

    def at_login_session(self, method, *arguments):
        return self.call(LOGIN, "/org/freedesktop/login1/session/auto", method, *arguments, bus="--system")

    def lock(self):
        """As a locker does that tells the login manager."""
        self.at_login_session(f"{LOGIN}.Session.SetLockedHint", "true")

    def unlock(self):
        self.at_login_session(f"{LOGIN}.Session.SetLockedHint", "false")

    # What a person does, each desktop in its way

    def start_desktop(self):
        raise NotImplementedError

    def activate(self, app_id):
        raise NotImplementedError

    def front(self):
        """The application id of the window in front."""
        raise NotImplementedError

    def bring_to_front(self, app_id):
        def is_there():
            self.activate(app_id)
            return self.front() == app_id
        wait_until(is_there, f"{app_id} in front")

    def touch(self):
        """A key is pressed, or the mouse is moved."""
        raise NotImplementedError

    def press_return(self):
        raise NotImplementedError

    def picture(self, path):
        raise NotImplementedError

    def kill_desktop(self):
        """As a crash does."""
        self.compositor.kill()
        self.compositor.wait()

    def stray(self):
        """What KESTU has left in the desktop, for a person to read; empty when nothing."""
        return ""

    def enter_folder(self, name):
        folder = self.folder / name
        folder.mkdir(exist_ok=True)
        return folder

    def open_terminal(self, app_id, title):
        self.start("foot", "--app-id", app_id, "--title", title, "sleep", "10000")
        self.bring_to_front(app_id)

    def play_film(self, app_id):
        """A player in front, which keeps the display awake as long as it runs."""
        player = self.start("/usr/bin/python3", HERE / "film.py", app_id, "映画")
        self.bring_to_front(app_id)
        return player

    # KESTU and its file

    def start_kestu(self, *arguments, more=None):
        return self.start(KESTU, *arguments, more=more)

    def query(self, text):
        if not self.store.exists():
            return []
        with contextlib.suppress(sqlite3.OperationalError), \
                contextlib.closing(sqlite3.connect(f"file:{self.store}?mode=ro", uri=True, timeout=5)) as store:
            return store.execute(text).fetchall()
        return []

    def rows(self, since=0):
        """Of what ended after `since`: start, end, id, name, title, address."""
        return self.query("SELECT start, end, bundle_id, app_name, title, coalesce(url, '') FROM activity "
                          f"WHERE end > {since} ORDER BY start")


class Memo:
    """A window of GTK, or a player's that keeps the display awake when told to."""

    APP_ID = "jp.example.memo"

    def __init__(self, desk, title):
        self.desk = desk
        self.process = desk.start("/usr/bin/python3", HERE / "memo.py", self.APP_ID, title,
                                  stdin=subprocess.PIPE, more={"NO_AT_BRIDGE": "1"})
        desk.callback(self.process.stdin.close)
        desk.bring_to_front(self.APP_ID)

    def say(self, line):
        self.process.stdin.write(line.encode() + b"\n")
        self.process.stdin.flush()
        return time.time()


def adopt_orphans():
    """Whoever a desktop leaves behind becomes our child, so that we can end it."""
    set_child_subreaper = 36
    ctypes.CDLL(None).prctl(set_child_subreaper, 1, 0, 0, 0)


def descendants():
    children = {}
    for status in pathlib.Path("/proc").glob("[0-9]*/stat"):
        with contextlib.suppress(OSError):
            fields = status.read_text().rpartition(")")[2].split()
            children.setdefault(int(fields[1]), []).append(int(status.parent.name))
    found, open_ends = [], [os.getpid()]
    while open_ends:
        open_ends += (more := children.get(open_ends.pop(), []))
        found += more
    return found


def end_descendants():
    for how in (signal.SIGTERM, signal.SIGKILL):
        end = time.monotonic() + 5
        while (left := descendants()) and time.monotonic() < end:
            for process in left:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(process, how)
            with contextlib.suppress(ChildProcessError):
                while os.waitpid(-1, os.WNOHANG)[0]:
                    pass
            time.sleep(0.1)
    sys.stdout.flush()
