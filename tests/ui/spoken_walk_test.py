#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Walks by Tab through every screen and sheet of the running program, and listens as a screen reader does: every
stop says once what it is called, what it is and how it stands, in a window that is known and active.

usage: spoken_walk_test.py KESTU SAMPLE_STORE, on a virtual desk
"""
import contextlib
import os
import pathlib
import sqlite3
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import screen_reader  # noqa: E402

KESTU, SAMPLE_STORE = sys.argv[1:3]
# What says nothing but that it is there, and what is not to be walked on.
MUTE_ROLES = {"filler", "panel", "frame", "unknown", "other", "table"}
TWO_STATES = {"check box": "checked", "radio button": "checked", "list item": "selected"}
MOST_STOPS = 120
ENOUGH = 2  # seconds, after which Tab has led nowhere


def spoken(stop):
    """Name, value, role, states and description, as they are read out."""
    states = stop.states
    on = TWO_STATES.get(stop.role)
    parts = [stop.name, stop.text, stop.role, on and (on if on in states else f"not {on}"),
             "expandable" if "expandable" in states else None]
    if stop.description != stop.name:
        parts.append(stop.description)
    return " | ".join(part for part in parts if part)


class Walk(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.resources = contextlib.ExitStack()
        cls.addClassCleanup(cls.resources.close)
        folder = pathlib.Path(cls.resources.enter_context(tempfile.TemporaryDirectory()))
        database = folder / "kestu.sqlite"
        subprocess.run([SAMPLE_STORE, database], check=True)
        cls.database = sqlite3.connect(database, isolation_level=None)
        cls.start("trayer", "--edge", "top", "--align", "left")
        # On the evening of the sample day; only the clock on the wall, for timers go on as they do. Not by the
        # command, which stays between us and the program.
        preload = subprocess.run(["faketime", "-f", "+0", "sh", "-c", "echo $LD_PRELOAD"], check=True, text=True,
                                 capture_output=True).stdout.strip()
        cls.start(KESTU, env={**os.environ, "KESTU_DB_PATH": str(database), "TZ": "Asia/Tokyo",
                              "LD_PRELOAD": preload, "FAKETIME": "@2026-11-18 18:44:00",
                              "FAKETIME_DONT_FAKE_MONOTONIC": "1",
                              # The library of the clock comes before that of the sanitizers, who mind that.
                              "ASAN_OPTIONS": "verify_asan_link_order=0:detect_leaks=0"})
        subprocess.run(["timeout", "30", "xdotool", "search", "--sync", "--onlyvisible", "--name", "タイムライン"],
                       check=True, stdout=subprocess.DEVNULL)
        # As with a reader that is switched on behind a program that started with the session.
        cls.reader = screen_reader.Reader()
        cls.window = cls.reader.wait(cls.find_window, "the window")
        cls.reader.wait(lambda: "active" in cls.window.states, "the window in front")

    @classmethod
    def start(cls, *command, **options):
        process = subprocess.Popen(command, **options)
        cls.resources.callback(lambda: (process.terminate(), process.wait()))
        return process

    @classmethod
    def find_window(cls):
        for program in cls.reader.programs():
            if program.name == "KESTU":
                return next(iter(program.children), None)
        return None

    def find_panel(self):
        return next((child for child in self.window.parent.children if "active" in child.states
                     and child != self.window), None)

    def key(self, *keys):
        subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], check=True)

    def find(self, name, role="push button"):
        return self.reader.wait(lambda: self.window.find(name, role), f"the {role} {name}")

    def focused(self):
        found = self.reader.heard("StateChanged:focused")
        return found[-1] if found else None

    def tab(self):
        """Where Tab leads to, or False: to another part of the same field. None when it leads nowhere."""
        self.window.states  # an answer comes behind all events of what was done before
        self.reader.forget()
        self.key("Tab")
        with contextlib.suppress(AssertionError):
            self.reader.wait(lambda: self.reader.events, "the focus", ENOUGH)
        self.window.states
        *passed, stop = self.reader.heard("StateChanged:focused") or [None]
        # A list says its own name first.
        self.assertLessEqual(set(passed), set(stop.ancestors) if stop else set(), "says more than one stop")
        return stop or (False if self.reader.heard("TextSelectionChanged", None) else None)

    def check(self, stop, before):
        said = spoken(stop)
        print("   ", said)
        self.assertTrue(stop.name.strip(), f"has no name: {said}")
        self.assertNotIn("<", stop.name + stop.description, "reads markup")
        self.assertNotIn(stop.role, MUTE_ROLES, said)
        self.assertLessEqual({"focused", "focusable", "showing", "enabled"}, stop.states, said)
        self.assertNotEqual(said, before, "says the same as the stop before")
        if stop.role == "list":
            self.assertFalse([child for child in stop.children if "selected" in child.states], "hides its choice")
        if stop.role == "combo box":
            self.assertTrue(stop.text, f"does not say its value: {said}")
            self.assertNotEqual(stop.name, stop.text, "is called by its value")
        frames = [thing for thing in stop.ancestors if thing.role == "frame"]
        self.assertEqual(len(frames), 1, f"{said} lies in {len(frames)} windows")
        self.assertTrue(frames[0].name, "in a window without a name")
        self.assertIn("active", frames[0].states, "in a window that is not active")
        return said

    def walk(self, place, least):
        """From the stop that has the focus round to it again."""
        print(place)
        seen, before = [], None
        while len(seen) < MOST_STOPS:
            stop = self.tab()
            if stop is False:
                continue
            if stop is None or stop in seen:
                break
            seen.append(stop)
            with self.subTest(place=place, stop=len(seen)):
                before = self.check(stop, before)
        self.assertGreaterEqual(len(seen), least, f"stops of {place}")

    def go(self, keys, title):
        self.reader.forget()
        self.key(keys)
        self.reader.wait(lambda: self.window.name == title, title)
        self.assertIn(self.window, self.reader.heard("PropertyChange:accessible-name", None), "is not told")

    def shove(self):
        """Whatever happens to the window, it has its name, and that it is worked in is told as it is."""
        own = subprocess.run(["xdotool", "getactivewindow"], check=True, text=True, capture_output=True).stdout.strip()
        name = self.window.name
        for what, act in (("another in front", lambda: self.start("xterm", stderr=subprocess.DEVNULL)),
                          ("back", lambda: subprocess.run(["xdotool", "windowactivate", own], check=True)),
                          ("minimised", lambda: subprocess.run(["xdotool", "windowminimize", own], check=True)),
                          ("restored", lambda: subprocess.run(["xdotool", "windowactivate", own], check=True))):
            with self.subTest(window=what):
                is_active = what in ("back", "restored")
                self.reader.forget()
                act()
                self.reader.wait(lambda: ("active" in self.window.states) == is_active, what)
                self.reader.wait(lambda: self.reader.heard("StateChanged:active", None), what)
                self.window.states
                self.assertEqual(self.window.name, name)
                told = {value for kind, thing, value in self.reader.events
                        if kind == "StateChanged:active" and thing == self.window}
                self.assertEqual(told, {int(is_active)}, "tells what is not so")

    def sheet(self, name, open_it, least):
        with self.subTest(sheet=name):
            self.reader.forget()
            open_it()
            sheet = self.find(name, "dialog")
            self.reader.wait(lambda: self.focused() and sheet in self.focused().ancestors, "the focus in the sheet")
            self.assertLessEqual({"modal", "active", "showing"}, sheet.states)
            if "？" in name:
                self.assertTrue(sheet.description, "asks about nothing")
            self.walk(name, least)
            self.key("Escape")
            self.wait_for_end(name)

    def wrong_time(self):
        """A complaint is told when it comes up, and stands at its field from then on."""
        self.key("ctrl+n")
        title = self.find("内容", "text")
        self.reader.wait(lambda: "focused" in title.states, "the focus in the title")
        self.key("shift+Tab", "Left")
        complaint = "終了は開始より後にしてください。"
        self.announced(complaint, lambda: self.key("0", "0", "1", "5"))
        self.assertEqual(self.find("終了", "spin button").description, complaint)
        self.key("Escape")
        self.find("破棄").press()
        self.wait_for_end("手動の記録")

    def wait_for_end(self, sheet):
        self.reader.wait(lambda: sheet not in [child.name for child in self.window.children], f"the end of {sheet}")

    def announced(self, text, act):
        """What is done is told once, in those words and no other."""
        self.window.states
        self.reader.forget()
        act()
        heard = lambda: [thing.name for thing in self.reader.heard("StateChanged:showing")  # noqa: E731
                         if thing.role == "notification"]
        self.reader.wait(heard, text)
        self.window.states
        self.assertEqual(heard(), [text])

    def test_walk(self):
        begin = self.find("はじめる")
        self.reader.wait(lambda: "focused" in begin.states, "the focus in the welcome")
        self.walk("welcome", 2)
        begin.press()
        self.wait_for_end("KESTUへようこそ")

        self.walk("timeline", 10)
        self.shove()
        self.find("1日の帯", "list").children[-1].press()
        self.find("プロジェクト", "combo box")
        self.walk("timeline with an activity", 14)
        self.sheet("手動の記録", lambda: self.key("ctrl+n"), 8)
        self.wrong_time()
        self.sheet("この日のまとめ", self.find("編集").press, 3)
        self.sheet("振り分け", self.find("振り分ける…").press, 6)
        self.find("1日の帯", "list").press()
        self.sheet("この区間を削除しますか？", lambda: self.key("Delete"), 2)

        self.go("ctrl+2", "KESTU")
        self.walk("report", 8)
        self.go("ctrl+3", "分類とルール")
        self.walk("projects", 20)
        self.announced("提案 1 件", lambda: self.database.execute("DELETE FROM rule_suggestion WHERE id = 1"))
        self.go("ctrl+4", "設定")
        self.walk("settings", 10)
        self.announced("一時停止中", self.find("記録する", "check box").press)
        self.announced("4分", self.find("何もしていないとみなすまでの時間を増やす").press)

        subprocess.run("xdotool search --onlyvisible --class trayer mousemove --window %1 12 12 click 1", shell=True,
                       check=True)
        self.reader.wait(self.find_panel, "the panel")
        self.key("Tab")
        type(self).window = self.find_panel()
        self.walk("panel", 3)
        self.announced("記録中", self.find("記録を再開").press)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=0)
