// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the screens say of the system that KESTU runs on: its name, its settings, its folders, and what the
// user does there so that windows can be recorded. All words that are true of one system only are here.
#pragma once

#include "platform/Abilities.h"

#include <QString>

namespace kestu {

struct SystemWords {
    QString greeting;       // what KESTU does, and where its records stay
    QString permissionStep; // of the welcome: how windows and their titles come to be recorded
    QString addressStep;    // of the welcome: the same of the pages in browsers
    QString warning;        // while not all windows and titles can be told: that this is so
    QString warningText;    // and what would help
    QString addressNote;    // in the settings
    QString dataNote;       // in the settings: where the records are, and who gets them
};

/// The folder is an absolute path.
[[nodiscard]] SystemWords macWords(const QString& dataFolder);
[[nodiscard]] SystemWords linuxWords(const Abilities& abilities, const QString& dataFolder);

/// In a word.
[[nodiscard]] QString abilityText(Ability::Kind kind);

} // namespace kestu
