// SPDX-License-Identifier: GPL-3.0-or-later
//
// The shared controls side by side, to be looked at.
#pragma once

#include <QWidget>

#include <memory>

namespace kestu {

[[nodiscard]] std::unique_ptr<QWidget> makeGallery();

} // namespace kestu
