// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the user wants programs to look: light or dark, and what the desktop's tray is coloured like. Delivered
// on the main thread.
#pragma once

#include <QObject>

#include <cstdint>
#include <optional>

namespace kestu {

enum class ColorScheme { light, dark };

struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    [[nodiscard]] bool operator==(const Rgb&) const = default;
};

class Appearance : public QObject {
    Q_OBJECT

public:
    /// Absent when the desktop has no such setting, or when it cannot be asked.
    [[nodiscard]] virtual std::optional<ColorScheme> colorScheme() const = 0;

    /// What symbols in the tray are to be drawn in; absent when there is no tray or it does not tell.
    [[nodiscard]] virtual std::optional<Rgb> trayInk() const = 0;

Q_SIGNALS:
    void colorSchemeChanged();
    void trayInkChanged();
};

} // namespace kestu
