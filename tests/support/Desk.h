// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a person does on the private desk: opens windows, switches between them, moves the mouse.
#pragma once

#include "support/Program.h"

#include <QString>

namespace kestu::test {

/// A terminal window with its own class and title.
class Terminal final {
public:
    Terminal(const QString& wmClass, const QString& title);

    void moveTo(int x, int y) const;

    /// Moves the mouse into the window.
    void pointAt() const;

    /// Brings the window to the front and waits until it is there.
    void activate() const;

    void setTitle(const QString& title) const;

    /// `format` is xprop's: the bits of an item and its kind, "8s" for a text.
    void setProperty(const QString& name, const QString& format, const QString& value) const;

private:
    Program m_program;
    QString m_windowId;
};

void moveMouse(int x, int y);

/// Writes an entry for an application "ID.desktop" into the desk's own applications.
void installDesktopEntry(const QString& id, const QString& content);

} // namespace kestu::test
