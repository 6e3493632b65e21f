#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Logs out of a real desktop session in which KESTU runs: it ends in order, its last row ends with the session,
and the file is whole.

usage: logout_test.py KESTU OBJECTOR
"""
import contextlib
import os
import pathlib
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

KESTU = str(pathlib.Path(sys.argv.pop(1)).resolve())
OBJECTOR = sys.argv.pop(1)
PATIENCE = 30

SESSION = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-session" version="1.0">
  <property name="general" type="empty">
    <property name="FailsafeSessionName" type="string" value="Failsafe"/>
    <property name="LockCommand" type="string" value=""/>
  </property>
  <property name="startup" type="empty">
    <property name="ssh-agent" type="empty"><property name="enabled" type="bool" value="false"/></property>
    <property name="gpg-agent" type="empty"><property name="enabled" type="bool" value="false"/></property>
  </property>
  <property name="sessions" type="empty">
    <property name="Failsafe" type="empty">
      <property name="IsFailsafe" type="bool" value="true"/>
      <property name="Count" type="int" value="1"/>
      <property name="Client0_Command" type="array"><value type="string" value="openbox"/></property>
      <property name="Client0_Priority" type="int" value="15"/>
    </property>
  </property>
</channel>
"""


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError(f"waited in vain for {what}")


class Session(contextlib.ExitStack):
    """A session of its own, with an xterm in front; `arguments` are those of KESTU, which it starts."""

    def __init__(self, arguments, has_tray):
        super().__init__()
        folder = pathlib.Path(self.enter_context(tempfile.TemporaryDirectory(ignore_cleanup_errors=True)))
        self.database = folder / "data/kestu.sqlite"
        self.exit_code = folder / "exit"
        self.errors = folder / "errors"
        self.manager = folder / "manager"
        for name in ("home", "run", "data", "config/autostart", "config/xfce4/xfconf/xfce-perchannel-xml"):
            (folder / name).mkdir(parents=True, mode=0o700)
        (folder / "config/xfce4/xfconf/xfce-perchannel-xml/xfce4-session.xml").write_text(SESSION)
        starter = folder / "start-kestu"
        starter.write_text(f"#!/bin/sh\necho $SESSION_MANAGER >'{self.manager}'\n"
                           f"'{KESTU}' {arguments} 2>'{self.errors}'\necho $? >'{self.exit_code}'\n")
        starter.chmod(0o700)
        (folder / "config/autostart/kestu.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=KESTU\nExec={starter}\n")
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": str(folder / "home"), "LC_ALL": "C.UTF-8",
            "XDG_RUNTIME_DIR": str(folder / "run"), "XDG_CONFIG_HOME": str(folder / "config"),
            "XDG_CONFIG_DIRS": str(folder / "none"), "XDG_SESSION_TYPE": "x11", "GSETTINGS_BACKEND": "memory",
            "KESTU_DB_PATH": str(self.database), "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={folder}/none"}
        self.log = self.enter_context(open(folder / "log", "w+"))
        self.display = self.start_display()
        self.start_bus()
        if has_tray:
            self.start("trayer", "--edge", "bottom")
        self.session = self.start("xfce4-session")
        self.start("xterm", "-title", "front")
        wait_until(self.activate_terminal, "the terminal in front")

    def start(self, *command, **options):
        process = subprocess.Popen(command, env=self.environment, stderr=self.log, stdin=subprocess.DEVNULL,
                                   **{"stdout": self.log, **options})
        self.callback(lambda: (process.kill(), process.wait()))
        return process

    def start_display(self):
        reader, writer = os.pipe()
        display = self.start("Xvfb", "-displayfd", str(writer), "-nolisten", "tcp", "-noreset", pass_fds=[writer])
        os.close(writer)
        with open(reader) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()
        return display

    def start_bus(self):
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE, text=True)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
        self.callback(bus.stdout.close)

    def run(self, *command):
        return subprocess.run(command, env=self.environment, stdout=subprocess.PIPE, stderr=self.log, text=True).stdout

    def window(self, title):
        return wait_until(lambda: self.run("xdotool", "search", "--onlyvisible", "--name", f"^{title}$").split(),
                          f"window {title}")[0]

    def activate_terminal(self):
        window = self.window("front")
        self.run("xdotool", "windowactivate", window)
        return self.run("xdotool", "getactivewindow").strip() == window

    def rows(self):
        with contextlib.closing(sqlite3.connect(f"file:{self.database}?mode=ro", uri=True)) as database:
            return database.execute("SELECT start, end FROM activity ORDER BY start").fetchall()

    def records(self):
        with contextlib.suppress(sqlite3.Error):
            return bool(self.rows())
        return False

    def log_out(self, *how):
        self.run("xfce4-session-logout", "--logout", *how)
        return time.time()

    def wait_for_end(self):
        """As a display manager does: when the session's own process has ended, the display goes."""
        self.session.wait(PATIENCE)
        self.lose_display()

    def lose_display(self):
        self.display.terminate()
        wait_until(lambda: self.exit_code.exists() and self.exit_code.read_text(), "the end of KESTU")


class Logout(unittest.TestCase):
    def test_ends_the_row_and_leaves_the_file_whole(self):
        for view in ("open", "minimised", "background", "asked"):
            for has_tray in (True, False):
                with self.subTest(view=view, has_tray=has_tray), \
                        Session("--background" if view == "background" else "", has_tray) as session:
                    wait_until(session.records, "a row")
                    if view == "minimised":
                        window = session.window("タイムライン.*")
                        session.run("xdotool", "windowminimize", "--sync", window)
                    if view == "asked":  # whether what is half-typed may be lost
                        session.run("xdotool", "windowactivate", "--sync", session.window("タイムライン.*"))
                        session.run("xdotool", "key", "--delay", "300", "Return", "ctrl+n")
                        session.run("xdotool", "type", "--delay", "30", "half-typed")
                        session.run("xdotool", "key", "ctrl+q")
                    time.sleep(3)  # so that the row has been extended
                    logged_out = session.log_out("--fast")
                    session.wait_for_end()
                    self.check(session, logged_out)

    def test_goes_on_recording_after_a_logout_that_was_called_off(self):
        with Session("", has_tray=False) as session:
            wait_until(session.records, "a row")
            session.environment["SESSION_MANAGER"] = session.manager.read_text().strip()
            objector = session.start(OBJECTOR)
            time.sleep(2)  # until it has joined the session
            session.log_out()
            self.assertEqual(objector.wait(PATIENCE), 0)
            count, (_, before) = len(session.rows()), session.rows()[-1]
            wait_until(lambda: session.rows()[-1][1] > before + 3, "the row that goes on")
            self.assertEqual(len(session.rows()), count)
            logged_out = session.log_out("--fast")
            session.wait_for_end()
            self.check(session, logged_out)

    def test_the_loss_of_the_display_costs_at_most_a_tick(self):
        with Session("", has_tray=False) as session:
            wait_until(session.records, "a row")
            time.sleep(3)
            lost = time.time()
            session.lose_display()
            self.assertAlmostEqual(session.rows()[-1][1], lost, delta=2.5)

    def check(self, session, logged_out):
        errors = session.errors.read_text()
        self.assertEqual(session.exit_code.read_text().strip(), "0", errors)
        self.assertEqual(sorted(path.name for path in session.database.parent.glob("*-wal")), [], errors)
        self.assertAlmostEqual(session.rows()[-1][1], logged_out, delta=2)
        with contextlib.closing(sqlite3.connect(session.database)) as database:
            self.assertEqual(database.execute("PRAGMA integrity_check").fetchone(), ("ok",))


if __name__ == "__main__":
    unittest.main()
