// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/SheetSupport.h"

#include "ui/controls/Painted.h"
#include "ui/controls/Sheet.h"

#include <QAccessibleWidget>
#include <QPainter>

namespace kestu {
namespace {

constexpr const char* coverCount = "kestuCovers";

class SheetInterface final : public QAccessibleWidget {
public:
    explicit SheetInterface(QWidget* sheet)
        : QAccessibleWidget(sheet, QAccessible::Dialog) {}

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = true;
        return state;
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const sheet = qobject_cast<Sheet*>(object);
    return sheet ? new SheetInterface(sheet) : nullptr;
}

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

void reportSheetsAsDialogs() {
    static const bool installed = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(installed)
}

void announceSheet(QWidget* sheet, bool opened) {
    QAccessibleEvent event(sheet, opened ? QAccessible::DialogStart : QAccessible::DialogEnd);
    QAccessible::updateAccessibility(&event);
}

} // namespace kestu
