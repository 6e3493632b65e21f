// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/KWinScript.h"

namespace kestu::kwinScript {
namespace {

constexpr auto text = R"(// Of KESTU, for as long as it runs: tells it which window is in front.
"use strict";
var current = null;
var changes = ["captionChanged", "windowClassChanged", "desktopFileNameChanged"];

function text(value) {
    return value === undefined || value === null ? "" : String(value);
}

function facts(window) {
    return {
        id: text(window.internalId),
        pid: Number(window.pid) || 0,
        name: text(window.resourceName),
        "class": text(window.resourceClass),
        entry: text(window.desktopFileName),
        isDesktop: Boolean(window.desktopWindow),
        title: text(window.caption),
        at: Date.now()
    };
}

function tell() {
    callDBus("%1", "%2", "%3", "%4", JSON.stringify(current ? facts(current) : null));
}

function follow(window) {
    changes.forEach(function (change) {
        try {
            current[change].disconnect(tell);
        } catch (gone) {
            // no window, or one that has closed
        }
    });
    current = window || null;
    changes.forEach(function (change) {
        if (current && current[change]) {
            current[change].connect(tell);
        }
    });
    tell();
}

if (workspace.windowActivated) {
    workspace.windowActivated.connect(follow);
    follow(workspace.activeWindow);
} else { // Plasma 5
    workspace.clientActivated.connect(follow);
    follow(workspace.activeClient);
}
)";

} // namespace

QByteArray source(const QString& busNumber) {
    return QString::fromUtf8(text).arg(busNumber, path, interface, method).toUtf8();
}

} // namespace kestu::kwinScript
