// SPDX-License-Identifier: GPL-3.0-or-later
//
// Everything that the user sets: recording, what is never recorded, the permission, the way for assistants,
// and where the records lie. It belongs to its parent widget.
#pragma once

#include <QScrollArea>

namespace kestu {

class AppModel;

class SettingsScreen final : public QScrollArea {
    Q_OBJECT

public:
    explicit SettingsScreen(AppModel& model);
};

} // namespace kestu
