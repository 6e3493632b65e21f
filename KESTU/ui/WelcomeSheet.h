// SPDX-License-Identifier: GPL-3.0-or-later
//
// Shown once, over the first window: what KESTU does, and what it asks for. Its one way out is はじめる.
#pragma once

#include "ui/controls/Sheet.h"

namespace kestu {

class AppModel;

class WelcomeSheet final : public Sheet {
public:
    WelcomeSheet(QWidget* host, AppModel& model);
};

} // namespace kestu
