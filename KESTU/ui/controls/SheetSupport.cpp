// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/SheetSupport.h"

#include "ui/controls/Painted.h"

#include <QAccessible>
#include <QPainter>
#include <QVariant>

namespace kestu {
namespace {

constexpr const char* coverCount = "kestuCovers";

} // namespace

void SheetCard::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    paintRounded(painter, rect(), metrics::radiusSheet, colors.sheet,
                 {.color = colors.sheetBorder, .width = 1});
}

bool cover(QWidget* widget) {
    const int above = widget->property(coverCount).toInt();
    if (above == 0 && widget->testAttribute(Qt::WA_ForceDisabled)) {
        return false;
    }
    widget->setProperty(coverCount, above + 1);
    widget->setProperty(coveredProperty, true);
    widget->setEnabled(false);
    return true;
}

void uncover(QWidget* widget) {
    const int above = widget->property(coverCount).toInt() - 1;
    widget->setProperty(coverCount, above);
    if (above == 0) {
        widget->setProperty(coveredProperty, false);
        widget->setEnabled(true);
    }
}

void announceSheet(QWidget* sheet, bool opened) {
    QAccessibleEvent event(sheet, opened ? QAccessible::DialogStart : QAccessible::DialogEnd);
    QAccessible::updateAccessibility(&event);
}

} // namespace kestu
