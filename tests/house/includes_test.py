#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads every #include of ours and fails on one that goes up a floor, on a widget below the screens, and on
a system header outside its folder. Linking cannot see these: all floors share one include root.

usage: includes_test.py SOURCE_ROOT WIDGETS_INCLUDE_FOLDER...
"""
import pathlib
import re
import sys
import tempfile

# What each folder may include of ours, beside itself.
FLOORS = {
    "base": [],
    "storage": ["base"],
    "classify": ["base", "storage"],
    "reports": ["base", "storage", "classify"],
    "platform": ["base"],
    "platform/linux": ["base", "platform", "platform/linux/wayland"],
    "platform/linux/wayland": ["base", "platform", "platform/linux"],
    "capture": ["base", "storage", "platform"],
    "app": ["base", "storage", "classify", "reports", "platform", "capture"],
    # The screens read records and figures; the store, the tracker and the system they never see.
    "ui/theme": [],
    "ui/controls": ["ui/theme"],
    "ui/parts": ["base", "storage", "app", "ui/theme", "ui/controls"],
    "ui/timeline": ["base", "storage", "classify", "app", "ui/theme", "ui/controls", "ui/parts"],
    "ui/projects": ["base", "storage", "classify", "app", "ui/theme", "ui/controls", "ui/parts"],
    "ui/settings": ["base", "storage", "classify", "app", "ui/theme", "ui/controls", "ui/parts"],
    "ui/report": ["base", "storage", "classify", "reports", "app", "ui/theme", "ui/controls", "ui/parts"],
    "ui": ["base", "storage", "classify", "app", "ui/theme", "ui/controls", "ui/parts", "ui/timeline",
           "ui/projects", "ui/settings", "ui/report"],
}
# Who may include which header of the system.
SYSTEM = [
    (re.compile(r"sqlite3"), {"storage"}),
    (re.compile(r"(xcb|X11|wayland|atspi|gio|glib)\b|QDBus|QtDBus"),
     {"platform/linux", "platform/linux/wayland"}),
]
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def faults(root, widgets):
    for path in sorted(root.rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        folder = path.parent.relative_to(root).as_posix()
        if folder == ".":
            continue  # main puts everything together
        if folder not in FLOORS:
            yield f"{path}: the folder {folder} stands on no floor"
            continue
        for bracket, header in INCLUDE.findall(path.read_text(encoding="utf-8")):
            if bracket == '"':
                if header.rpartition("/")[0] not in [folder, *FLOORS[folder]]:
                    yield f"{path}: {folder} must not include {header}"
            elif header.rpartition("/")[2] in widgets and not folder.startswith("ui"):
                yield f"{path}: {header} belongs to ui"
            else:
                for pattern, allowed in SYSTEM:
                    if pattern.match(header) and folder not in allowed:
                        yield f"{path}: {header} belongs to {' and '.join(allowed)}"


def prove_that_faults_are_found(widgets):
    bad = {"base/A.h": '"storage/Records.h"', "capture/B.cpp": "<QLabel>", "storage/C.cpp": "<xcb/xcb.h>",
           "capture/D.h": "<QDBusConnection>", "ui/E.cpp": "<sqlite3.h>", "attic/F.h": "<vector>"}
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, header in bad.items():
            (root / name).parent.mkdir(exist_ok=True)
            (root / name).write_text(f"#include {header}\n", encoding="utf-8")
        found = list(faults(root, widgets))
        assert len(found) == len(bad), found


def main():
    widgets = {header.name for folder in sys.argv[2:] for header in pathlib.Path(folder).glob("Q*")
               if folder.endswith("QtWidgets")}
    assert "QLabel" in widgets, "the widgets' headers were not found"
    prove_that_faults_are_found(widgets)
    found = list(faults(pathlib.Path(sys.argv[1]) / "KESTU", widgets))
    print("\n".join(found) or "every include stays on its floor")
    sys.exit(1 if found else 0)


main()
