// SPDX-License-Identifier: GPL-3.0-or-later
//
// Text fields, editors, pickers and spin boxes as KestuStyle draws them.
#pragma once

#include <QRect>
#include <QStyle>

class QPainter;
class QStyleOption;
class QStyleOptionComboBox;
class QStyleOptionSpinBox;
class QWidget;

namespace kestu {

inline constexpr const char* plainFieldProperty = "kestuPlain";
inline constexpr const char* trailingProperty = "kestuTrailing";
inline constexpr const char* wrongProperty = "kestuWrong";

/// The part of a line edit that it writes into; itself keeps two more pixels free at both ends.
[[nodiscard]] QRect fieldContents(const QStyleOption& option, const QWidget* widget);
void drawField(QPainter& painter, const QStyleOption& option, const QWidget* widget);
/// Disabled text is faint only where it looks disabled, which a palette alone cannot tell.
void inkField(QWidget& field);

void drawPicker(QPainter& painter, const QStyleOptionComboBox& option, const QWidget* widget);
void drawPickerLabel(QPainter& painter, const QStyleOptionComboBox& option, const QWidget* widget);
[[nodiscard]] QSize pickerSize(const QStyleOptionComboBox& option, QSize contents);
[[nodiscard]] QRect pickerPart(const QStyleOptionComboBox& option, QStyle::SubControl part,
                               const QWidget* widget);

void drawSpinBox(QPainter& painter, const QStyleOptionSpinBox& option, const QWidget* widget);
[[nodiscard]] QSize spinBoxSize(QSize contents, const QWidget* widget);
[[nodiscard]] QRect spinBoxPart(const QStyleOptionSpinBox& option, QStyle::SubControl part,
                                const QWidget* widget);

} // namespace kestu
