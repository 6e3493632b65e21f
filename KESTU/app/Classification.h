// SPDX-License-Identifier: GPL-3.0-or-later
//
// How an unassigned group is to be sorted.
#pragma once

#include "storage/Records.h"

namespace kestu {

struct Classification {
    CategoryKind kind = CategoryKind::project;
    std::optional<RowId> targetId; // none: a new category named `newName`
    QString newName;
    bool makeRule = true; // else its activities are assigned by hand
    RuleField field = RuleField::app;
    RuleOperator op = RuleOperator::equals;
    QString value;

    bool operator==(const Classification&) const = default;
};

} // namespace kestu
