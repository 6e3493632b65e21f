# SPDX-License-Identifier: GPL-3.0-or-later
"""What the real program must do on every desktop. Each check returns the figure that it measured, and raises
Wrong with what it saw instead."""
import contextlib
import http.server
import signal
import sqlite3
import subprocess
import threading
import time

from desk import HERE, KESTU, Memo, PATIENCE, wait_until

TURN = 2.5
TURNS = 8
TICK = 2.3  # seconds, with what a busy machine adds
IDLE = 60  # the shortest threshold of the settings
MEMO, TERMINAL, PLAYER = Memo.APP_ID, "jp.example.terminal", "jp.example.film"


class Wrong(Exception):
    pass


def expect(holds, what):
    if not holds:
        raise Wrong(what)


def recording(desk, *arguments):
    """KESTU, which records already."""
    began = time.time()
    kestu = desk.start_kestu(*(arguments or ["--background"]), more={"XDG_ACTIVATION_TOKEN": "",
                                                                     "DESKTOP_STARTUP_ID": ""})
    wait_until(lambda: desk.rows(began), "the first row")
    return kestu


def end(kestu):
    kestu.send_signal(signal.SIGTERM)
    ended = time.time()
    expect(kestu.wait(PATIENCE) == 0, f"KESTU ended with {kestu.returncode}")
    return ended


def open_windows(desk):
    memo = Memo(desk, "議事録 <b>A社</b>")
    desk.open_terminal(TERMINAL, "作業 1")
    return memo


def check_turns(desk, memo):
    desk.bring_to_front(MEMO)
    kestu = recording(desk)
    began = desk.rows()[0][0]
    front = MEMO
    for _ in range(TURNS):
        time.sleep(TURN)
        front = TERMINAL if front == MEMO else MEMO
        desk.bring_to_front(front)
    time.sleep(TURN)
    changed = memo.say("title 新しい題")
    time.sleep(TURN)
    ended = end(kestu)
    rows = desk.rows()
    expected = [(MEMO, "メモ帳", "議事録 <b>A社</b>"), (TERMINAL, "端末", "作業 1")] * (TURNS // 2)
    expected += [expected[0], (MEMO, "メモ帳", "新しい題")]
    expect([row[2:5] for row in rows] == expected, f"rows: {rows}")
    expect(all(row[1] == following[0] for row, following in zip(rows, rows[1:])), f"rows do not touch: {rows}")
    missing = abs(sum(row[1] - row[0] for row in rows) - (ended - began))
    expect(missing < 0.1, f"the sum differs by {missing:.3f} s")
    late = rows[-1][0] - changed
    expect(abs(late) < 1, f"the title was seen {late:.3f} s after it changed")
    return f"{len(rows)} rows, sum off by {missing * 1000:.0f} ms, title seen after {late * 1000:.0f} ms"


def check_start(desk, _memo):
    waits = []
    for _ in range(3):
        before = time.time()
        kestu = recording(desk)
        waits.append(desk.rows(before)[0][0] - before)
        end(kestu)
    first = sorted(waits)[1]
    expect(first < 0.5, f"the first row began {first:.3f} s after the start")
    return f"first row {first * 1000:.0f} ms after the start"


class Pages(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        self.send_response(200)
        self.send_header("Content-Type", "text/html; charset=utf-8")
        self.end_headers()
        self.wfile.write("<!doctype html><title>日報の書き方</title><p>本文".encode())

    def log_message(self, *_):
        pass


def check_address(desk, browser, *command):
    """The address of a page that a browser shows; readers are switched on before it starts."""
    desk.run("gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus", "--method",
             "org.freedesktop.DBus.Properties.Set", "org.a11y.Status", "IsEnabled", "<true>")
    with contextlib.ExitStack() as stack:
        server = stack.enter_context(http.server.ThreadingHTTPServer(("127.0.0.1", 0), Pages))
        threading.Thread(target=server.serve_forever, daemon=True).start()
        stack.callback(server.shutdown)
        address = f"http://127.0.0.1:{server.server_port}/"
        kestu = recording(desk)
        began = time.time()
        program = desk.start(*command, address, more={"MOZ_ENABLE_WAYLAND": "1"})
        stack.callback(program.wait)
        stack.callback(program.terminate)

        def found():
            return [row for row in desk.rows(began) if row[5] == address]
        try:
            row = wait_until(found, "the address", 60)[0]
        except TimeoutError as error:
            raise Wrong(f"no address: {desk.rows(began)}") from error
        finally:
            end(kestu)
    expect("日報の書き方" in row[4], f"the row: {row}")
    return f"{browser}: {row[2]}, {row[5]}"


def check_firefox(desk, _memo):
    return check_address(desk, "Firefox", "firefox-esr", "--profile", desk.enter_folder("firefox"), "--no-remote")


def check_chromium(desk, _memo):
    return check_address(desk, "Chromium", "chromium", "--no-sandbox", "--disable-gpu", "--no-first-run",
                         f"--user-data-dir={desk.enter_folder('chromium')}", "--ozone-platform=wayland",
                         "--force-renderer-accessibility", "--password-store=basic")


def check_idle(desk, _memo):
    desk.bring_to_front(MEMO)
    kestu = recording(desk)
    time.sleep(3)
    desk.touch()
    touched = time.time()
    time.sleep(IDLE + 8)
    rows = desk.rows()
    late = rows[-1][1] - touched
    desk.touch()
    back = time.time()
    wait_until(lambda: desk.rows(back), "the row after the user's return")
    again = desk.rows(back)[-1][0] - back
    end(kestu)
    expect(abs(late) < 1, f"the row ended {late:.3f} s after the last input")
    expect(-1 < again < TICK, f"the next one began {again:.3f} s after the return")
    return f"row ended {late * 1000:+.0f} ms from the last input, the next began {again * 1000:+.0f} ms from the return"


def check_film(desk, _memo):
    desk.touch()
    player = desk.play_film(PLAYER)
    kestu = recording(desk)
    desk.touch()
    touched = time.time()
    time.sleep(IDLE + 8)
    rows = desk.rows(touched)
    now = time.time()
    end(kestu)
    player.terminate()
    player.wait()
    expect(rows and rows[-1][2] == PLAYER and now - rows[-1][1] < TICK,
           f"{now - touched:.1f} s after the last input: {rows}")
    return f"still recorded {rows[-1][1] - touched:.0f} s after the last input"


def check_lock(desk, _memo):
    desk.touch()
    desk.bring_to_front(MEMO)
    kestu = recording(desk)
    time.sleep(3)
    asked = time.time()
    desk.lock()
    locked = time.time()
    time.sleep(4)
    last = desk.rows()[-1]
    unlocked = time.time()
    desk.unlock()
    desk.touch()
    desk.bring_to_front(MEMO)
    wait_until(lambda: desk.rows(unlocked), "the row after the lock")
    following = desk.rows(unlocked)[-1]
    end(kestu)
    expect(asked - TICK < last[1] < locked + 0.5, f"locked at {locked:.3f}, the row ended at {last[1]:.3f}")
    expect(following[0] > unlocked - 0.5, f"unlocked at {unlocked:.3f}: {following}")
    return (f"row ended {(last[1] - locked) * 1000:+.0f} ms from the lock, "
            f"the next began {(following[0] - unlocked) * 1000:+.0f} ms from its end")


def check_second_copy(desk, memo):
    kestu = desk.start_kestu()
    wait_until(lambda: desk.front() == "kestu", "KESTU's window")
    desk.bring_to_front(MEMO)
    memo.say(f"launch {KESTU}")
    time.sleep(0.5)  # the window must have heard it
    before = time.time()
    desk.press_return()
    try:
        wait_until(lambda: desk.front() == "kestu", "KESTU in front", 10)
    except TimeoutError as error:
        raise Wrong(f"in front stayed {desk.front()}") from error
    after = time.time() - before
    end(kestu)
    return f"in front {after * 1000:.0f} ms after the key"


def check_picture(desk, folder):
    kestu = desk.start_kestu()
    wait_until(lambda: desk.front() == "kestu", "KESTU's window")
    time.sleep(2)  # until all is painted
    path = folder / f"{desk.name}.png"
    desk.picture(path)
    end(kestu)
    expect(path.exists() and path.stat().st_size > 10_000, f"no picture {path}")
    return path.name


def integrity(desk):
    with contextlib.closing(sqlite3.connect(desk.store)) as store:
        return store.execute("PRAGMA integrity_check").fetchone()[0]


def check_crash(desk, _memo):
    desk.bring_to_front(MEMO)
    kestu = recording(desk)
    time.sleep(5)
    kestu.kill()
    killed = time.time()
    kestu.wait()
    expect(integrity(desk) == "ok", integrity(desk))
    lost = killed - desk.rows()[-1][1]
    expect(lost < TICK, f"{lost:.1f} s are lost")
    end(recording(desk))
    expect(not desk.stray(), f"left in the desktop: {desk.stray()}")
    return f"file sound, {lost:.1f} s lost, nothing left behind"


def check_new_desktop(desk, _memo):
    """The compositor goes, and KESTU with it; both start again."""
    desk.bring_to_front(MEMO)
    kestu = recording(desk)
    time.sleep(5)
    desk.kill_desktop()
    killed = time.time()
    with contextlib.suppress(subprocess.TimeoutExpired):
        kestu.wait(10)
    expect(kestu.returncode is not None, "KESTU went on without a compositor")
    expect(integrity(desk) == "ok", integrity(desk))
    lost = killed - desk.rows()[-1][1]
    expect(abs(lost) < TICK, f"{lost:.1f} s are lost")
    desk.start_desktop()
    Memo(desk, "新しい机")
    end(recording(desk))
    expect(desk.rows()[-1][4] == "新しい机", f"{desk.rows()[-1]}")
    expect(not desk.stray(), f"left in the desktop: {desk.stray()}")
    return f"file sound, {lost:.1f} s lost, recorded again"


CHECKS = {"turns": check_turns, "start": check_start, "firefox": check_firefox, "chromium": check_chromium,
          "second-copy": check_second_copy, "idle": check_idle, "film": check_film, "lock": check_lock,
          "crash": check_crash, "new-desktop": check_new_desktop}
