// SPDX-License-Identifier: GPL-3.0-or-later
//
// The settings' section of what this session can tell KESTU, and the way to what is missing. It belongs to
// its parent widget and follows the model.
#pragma once

namespace kestu {

class AppModel;
class FormSection;

[[nodiscard]] FormSection* makePermissionSection(AppModel& model);

} // namespace kestu
