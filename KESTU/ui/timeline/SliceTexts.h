// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is told of one activity where there is no room for a panel: in a tooltip and to assistive technology.
// Parts without content are left out, and endless titles end early.
#pragma once

#include "classify/Resolution.h"

#include <QString>

namespace kestu {

class AppModel;

/// "9:07〜9:15", then application, title, domain and tags, a line each.
[[nodiscard]] QString sliceHelp(const ResolvedActivity& item, const AppModel& model);

/// "9:07〜9:15、Firefox、課題一覧、A社案件": time range, application, title, project.
[[nodiscard]] QString sliceName(const ResolvedActivity& item, const AppModel& model);

} // namespace kestu
