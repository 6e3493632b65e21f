// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is told of one activity where there is no room for a panel: in a tooltip and to assistive technology.
// Parts without content are left out, and endless titles end early.
#pragma once

#include "classify/Resolution.h"

#include <QString>

#include <span>
#include <vector>

namespace kestu {

class AppModel;

/// What the day shows of an activity: several pieces where entries made by hand lie on it.
[[nodiscard]] std::vector<ResolvedActivity> piecesOf(ActivityId id, const AppModel& model);

/// "9:00〜10:00、11:00〜12:00"
[[nodiscard]] QString rangesText(std::span<const ResolvedActivity> pieces, const AppModel& model);

/// "9:07〜9:15", then application, title, domain and tags, a line each.
[[nodiscard]] QString sliceHelp(const ResolvedActivity& item, const AppModel& model);

/// "9:07〜9:15、Firefox、課題一覧、A社案件": time range, application, title, project.
[[nodiscard]] QString sliceName(const ResolvedActivity& item, const AppModel& model);

/// As sliceName, with the time ranges of all pieces of the item's activity.
[[nodiscard]] QString activityName(const ResolvedActivity& item, const AppModel& model);

} // namespace kestu
