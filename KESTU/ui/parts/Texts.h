// SPDX-License-Identifier: GPL-3.0-or-later
//
// The words that several screens share: dates and times of day in their Japanese forms whatever the locale,
// the labels of rules, keys, and how a project or tag that may be gone is named and coloured.
#pragma once

#include "base/LocalClock.h"
#include "storage/Records.h"

#include <QColor>
#include <QKeySequence>
#include <QString>

#include <optional>

class QWidget;

namespace kestu {

class AppModel;

/// "2026年11月18日(水)".
[[nodiscard]] QString dateText(QDate date);
/// "9:05"; empty for an instant that no calendar can express.
[[nodiscard]] QString clockText(Instant instant, LocalClock& clock);
/// "9:05〜10:24".
[[nodiscard]] QString rangeText(const Interval& range, LocalClock& clock);

[[nodiscard]] QString labelOf(CategoryKind kind);
[[nodiscard]] QString labelOf(RuleField field);
[[nodiscard]] QString labelOf(RuleOperator op);
/// "ドメイン が example.jp と一致".
[[nodiscard]] QString sentenceOf(RuleField field, RuleOperator op, const QString& value);

/// As keys are written beside what they do: "Alt+←".
[[nodiscard]] QString keysText(const QKeySequence& keys);
/// The tooltip of what has keys: "前の日（Alt+←）".
[[nodiscard]] QString tipText(const QString& name, const QKeySequence& keys);
/// Tells a control's keys, in its tooltip and to assistive technology, which says the name by itself.
void tellKeys(QWidget& control, const QString& name, const QKeySequence& keys);

/// Without a project, or with one that is gone: 未分類, and an invalid colour, which widgets take for that of
/// unassigned time.
[[nodiscard]] QString projectName(const AppModel& model, std::optional<ProjectId> id);
[[nodiscard]] QColor projectColor(const AppModel& model, std::optional<ProjectId> id);
/// （削除済み） for one that is gone.
[[nodiscard]] QString tagName(const AppModel& model, TagId id);
[[nodiscard]] QColor tagColor(const AppModel& model, TagId id);

/// Whether every window can be recorded, as far as the session goes.
[[nodiscard]] bool seesAll(const AppModel& model);
/// Whether KESTU records, in a word: the sidebar is narrow.
[[nodiscard]] QString trackingStateText(const AppModel& model);

} // namespace kestu
