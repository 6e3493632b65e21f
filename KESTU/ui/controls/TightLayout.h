// SPDX-License-Identifier: GPL-3.0-or-later
//
// Layouts that add nothing around what they hold.
#pragma once

#include <QWidget>

namespace kestu {

/// A box layout of `owner` without margins, with `spacing` pixels between what it holds.
template<typename Layout>
Layout* tight(QWidget* owner, int spacing = 0) {
    auto* layout = new Layout(owner);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

} // namespace kestu
