# SPDX-License-Identifier: GPL-3.0-or-later
"""test-desktops FOLDER DESKTOP... [--only CHECK...]: called by scripts/test-desktops, as no privileged user."""
import pathlib
import signal
import subprocess
import sys

from checks import CHECKS, Wrong, check_picture, open_windows
from desk import adopt_orphans
from gnome import Gnome
from kwin import KWin
from labwc import Labwc
from sway import Sway

DESKTOPS = {desktop.name: desktop for desktop in (Sway, Labwc, KWin, Gnome)}
FAILURES = (Wrong, TimeoutError, RuntimeError, OSError, IndexError, subprocess.SubprocessError)


def attempt(label, work):
    try:
        print(f"ok    {label:22} {work()}", flush=True)
        return True
    except FAILURES as error:
        print(f"FAIL  {label:22} {type(error).__name__}: {error}", flush=True)
        return False


def test(name, folder, wanted):
    """Every check has a desk of its own, so that none depends on another."""
    passed = True

    def on_desk(check):
        def work():
            with DESKTOPS[name](folder) as desk:
                return check(desk)
        return work
    for what, check in CHECKS.items():
        if not wanted or what in wanted:
            passed &= attempt(f"{name} {what}", on_desk(lambda desk: check(desk, open_windows(desk))))
    if not wanted or "picture" in wanted:
        passed &= attempt(f"{name} picture", on_desk(lambda desk: check_picture(desk, folder)))
    return passed


def main():
    arguments = sys.argv[1:]
    wanted = []
    if "--only" in arguments:
        at = arguments.index("--only")
        arguments, wanted = arguments[:at], arguments[at + 1:]
    folder, names = pathlib.Path(arguments[0]), arguments[1:]
    unknown = [name for name in names if name not in DESKTOPS]
    unknown += [check for check in wanted if check not in [*CHECKS, "picture"]]
    if unknown:
        sys.exit(f"unknown: {', '.join(unknown)}")
    adopt_orphans()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    results = [test(name, folder, wanted) for name in names]
    sys.exit(not all(results))


main()
