// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a platform operation says when it could not do what the user asked for.
#pragma once

#include <QString>

#include <stdexcept>
#include <utility>

namespace kestu {

/// `description` is a sentence that may be shown to the user.
class PlatformError final : public std::runtime_error {
public:
    explicit PlatformError(QString text)
        : std::runtime_error(text.toStdString())
        , m_description(std::move(text)) {}

    [[nodiscard]] const QString& description() const noexcept { return m_description; }

private:
    QString m_description;
};

} // namespace kestu
