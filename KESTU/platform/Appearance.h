// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the user wants programs light or dark. Delivered on the main thread.
#pragma once

#include <QObject>

#include <optional>

namespace kestu {

enum class ColorScheme { light, dark };

class Appearance : public QObject {
    Q_OBJECT

public:
    /// Absent when the desktop has no such setting, or when it cannot be asked.
    [[nodiscard]] virtual std::optional<ColorScheme> colorScheme() const = 0;

Q_SIGNALS:
    void colorSchemeChanged();
};

} // namespace kestu
