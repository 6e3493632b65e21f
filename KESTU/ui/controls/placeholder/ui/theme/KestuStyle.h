// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QPushButton>
namespace kestu {
enum class ButtonRole { normal, destructive, destructiveFilled };
inline void setRole(QPushButton*, ButtonRole) {}
inline void setSmall(QPushButton*) {}
} // namespace kestu
