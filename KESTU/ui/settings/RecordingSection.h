// SPDX-License-Identifier: GPL-3.0-or-later
//
// The settings' first section: whether, when and how long is recorded. It belongs to its parent widget and
// follows the model.
#pragma once

namespace kestu {

class AppModel;
class FormSection;

[[nodiscard]] FormSection* makeRecordingSection(AppModel& model);

} // namespace kestu
