// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asks where a report is to be saved, with the desktop's own dialog where it has one.
#pragma once

#include "app/ReportExport.h"

#include <functional>

class QWidget;

namespace kestu {

struct SaveQuestion {
    ReportFormat format = ReportFormat::markdown;
    QString folder;   // to begin with
    QString fileName; // the suggestion
};

/// Opens the dialog above `owner`'s window and returns at once. `chosen` is called with the path if the user
/// confirms one, and never once `owner` is gone.
void askWhereToSave(QWidget* owner, const SaveQuestion& question,
                    const std::function<void(const QString& path)>& chosen);

} // namespace kestu
