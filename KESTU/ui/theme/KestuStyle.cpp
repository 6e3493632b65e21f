// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/KestuStyle.h"

#include "ui/theme/ButtonLook.h"
#include "ui/theme/FieldLook.h"
#include "ui/theme/MenuLook.h"
#include "ui/theme/Strokes.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTextFormat>

#include <algorithm>

namespace kestu {
namespace {

constexpr int editorFrame = 2; // as wide as the focus ring
constexpr int editorPadding = 12;

/// Its class is private to Qt, so it is known by its name alone.
bool isPickerMenu(const QWidget* widget) {
    return widget && widget->inherits("QComboBoxPrivateContainer");
}

bool isEditor(const QWidget* widget) {
    return qobject_cast<const QPlainTextEdit*>(widget) != nullptr;
}

void drawFrame(QPainter& painter, const QStyleOption& option, const QWidget* widget) {
    if (isPickerMenu(widget)) {
        drawMenuPanel(painter, option);
    } else if (isEditor(widget)) {
        drawField(painter, option, widget);
    } else {
        drawRing(painter, option.rect, 0, colorsOf(option.palette).divider, 1);
    }
}

bool isReturn(const QKeyEvent& event) {
    return (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) &&
           (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

/// Qt lets Return press a button on some desktops and in dialogs alone. One that is held is one press.
void pressBySpace(QAbstractButton& button, const QKeyEvent& event) {
    if (event.isAutoRepeat()) {
        return;
    }
    const QPointer<QAbstractButton> pressed(&button); // which may go with what it does
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        if (pressed) {
            QKeyEvent space(type, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
            QCoreApplication::sendEvent(pressed, &space);
        }
    }
}

bool isStepped(const QWidget& widget) {
    return qobject_cast<const QComboBox*>(&widget) || qobject_cast<const QAbstractSpinBox*>(&widget);
}

} // namespace

KestuStyle::KestuStyle()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void KestuStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    if (element == CE_PushButton && drawButton(*painter, *option, widget)) {
        return;
    }
    const auto* picker = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_ComboBoxLabel && picker && !picker->editable) {
        drawPickerLabel(*painter, *picker, widget);
    } else if (element == CE_MenuItem && item) {
        drawMenuItem(*painter, *item, widget);
    } else if (element == CE_MenuScroller) {
        drawMenuScroller(*painter, *option);
    } else if (element != CE_MenuEmptyArea) { // which the panel has drawn
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void KestuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    switch (element) {
    case PE_PanelLineEdit: {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (!frame || frame->lineWidth > 0) {
            drawField(*painter, *option, widget);
        }
        return;
    }
    case PE_Frame:
        drawFrame(*painter, *option, widget);
        return;
    case PE_PanelMenu:
        drawMenuPanel(*painter, *option);
        return;
    case PE_FrameMenu: // drawn with the panel
        return;
    case PE_PanelTipLabel:
        drawToolTip(*painter, *option);
        return;
    case PE_FrameFocusRect:
        if (option->state & State_KeyboardFocusChange) {
            drawRing(*painter, option->rect, metrics::radiusControl, colorsOf(option->palette).focus, 2);
        }
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void KestuStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    const auto* picker = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ToolButton && drawButton(*painter, *option, widget)) {
        return;
    }
    if (control == CC_ComboBox && picker) {
        drawPicker(*painter, *picker, widget);
    } else if (control == CC_SpinBox && spin) {
        drawSpinBox(*painter, *spin, widget);
    } else if (control == CC_ScrollBar && slider) {
        drawScrollBar(*painter, *slider);
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

QRect KestuStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                 const QWidget* widget) const {
    if (const auto* picker = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        control == CC_ComboBox && picker) {
        return visualRect(option->direction, option->rect, pickerPart(*picker, part, widget));
    }
    if (const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
        control == CC_SpinBox && spin) {
        return spinBoxPart(*spin, part, widget);
    }
    if (const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
        control == CC_ScrollBar && slider) {
        return scrollBarPart(*slider, part);
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QRect KestuStyle::subElementRect(SubElement element, const QStyleOption* option,
                                 const QWidget* widget) const {
    return element == SE_LineEditContents ? fieldContents(*option, widget)
                                          : QProxyStyle::subElementRect(element, option, widget);
}

QSize KestuStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                   const QWidget* widget) const {
    const auto* picker = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (type == CT_PushButton || type == CT_ToolButton) {
        return buttonSize(*option, widget);
    }
    if (type == CT_ComboBox && picker) {
        return pickerSize(*picker, contents);
    }
    if (type == CT_MenuItem && item) {
        return menuItemSize(*item, contents, widget);
    }
    if (type == CT_SpinBox) {
        return spinBoxSize(contents, widget);
    }
    if (type == CT_LineEdit) {
        return {contents.width(), std::max<int>(metrics::controlHeight, contents.height())};
    }
    return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

int KestuStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_ButtonIconSize:
    case PM_SmallIconSize:
        return metrics::icon;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_ScrollView_ScrollBarSpacing:
        return 0;
    case PM_DefaultFrameWidth:
        return isPickerMenu(widget) ? menuMargin : (isEditor(widget) ? editorFrame : 1);
    case PM_MenuPanelWidth:
        return 1;
    case PM_MenuHMargin:
    case PM_MenuVMargin: // a picker's list has its margin in the frame
        return qobject_cast<const QComboBox*>(widget) ? 0 : menuMargin - 1;
    case PM_ScrollBarExtent:
    case PM_ScrollView_ScrollBarOverlap: // it lies over the content, which has room for it
    case PM_ScrollBarSliderMin:
        return scrollBarExtent;
    case PM_ToolTipLabelFrameWidth:
        return 5; // the label adds one
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int KestuStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* result) const {
    switch (hint) {
    case SH_ComboBox_Popup: // the list of a picker is a menu
    case SH_ComboBox_ListMouseTracking:
        return 1;
    case SH_Menu_Mask:
    case SH_ToolTip_Mask:
        if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(result); mask && widget) {
            const int radius = hint == SH_Menu_Mask ? metrics::radiusInner : metrics::radiusControl;
            mask->region = roundRegion(widget->rect(), radius);
            return 1;
        }
        return 0;
    case SH_TextControl_FocusIndicatorTextCharFormat: // around a link
        if (auto* format = qstyleoption_cast<QStyleHintReturnVariant*>(result); format && option) {
            QTextCharFormat ring;
            ring.setProperty(QTextFormat::OutlinePen, QPen(colorsOf(option->palette).focus, 2));
            format->variant = ring;
            return 1;
        }
        return 0;
    case SH_ToolTipLabel_Opacity:
        return 255;
    case SH_ToolTip_WakeUpDelay:
        return 500; // milliseconds
    case SH_Widget_Animation_Duration:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
}

QPixmap KestuStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                        const QStyleOption* option) const {
    return mode == QIcon::Disabled ? QProxyStyle::generatedIconPixmap(mode, pixmap, option) : pixmap;
}

void KestuStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (isStepped(*widget) && widget->focusPolicy() == Qt::WheelFocus) {
        widget->setFocusPolicy(Qt::StrongFocus); // else the wheel gives it the focus first
    }
    if (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget)) {
        widget->setAttribute(Qt::WA_Hover);
        widget->installEventFilter(this);
    } else if (auto* field = qobject_cast<QLineEdit*>(widget)) {
        field->setAttribute(Qt::WA_Hover);
        field->installEventFilter(this);
        inkField(*field);
    } else if (qobject_cast<QAbstractSpinBox*>(widget)) {
        widget->installEventFilter(this);
    } else if (auto* editor = qobject_cast<QPlainTextEdit*>(widget)) {
        editor->setAttribute(Qt::WA_Hover);
        editor->installEventFilter(this);
        inkField(*editor);
        editor->viewport()->setAutoFillBackground(false); // its square corners would hide the round ones
        editor->document()->setDocumentMargin(editorPadding - (editorFrame - 1));
    } else if (auto* list = qobject_cast<QAbstractItemView*>(widget);
               list && isPickerMenu(list->parentWidget())) {
        list->viewport()->setAutoFillBackground(false);
    } else if (qobject_cast<QScrollBar*>(widget)) {
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false); // there is no track
    } else if (widget->inherits("QTipLabel")) {
        widget->setContentsMargins(2, 0, 3, 0); // a label's margin is the same on all sides
    }
}

bool KestuStyle::eventFilter(QObject* watched, QEvent* event) {
    auto* widget = qobject_cast<QWidget*>(watched);
    switch (event->type()) {
    case QEvent::MouseButtonDblClick:
        if (widget && widget->property(onceProperty).toBool()) {
            return true;
        }
        break;
    case QEvent::Wheel:
        // Who scrolls must not change what happens to pass below the pointer; a picker keeps the focus after
        // a choice, and is passed then, too.
        if (widget && isStepped(*widget) && (!widget->hasFocus() || qobject_cast<QComboBox*>(widget))) {
            event->ignore();
            return true;
        }
        break;
    case QEvent::KeyPress:
        if (auto* button = qobject_cast<QAbstractButton*>(watched);
            button && !button->isCheckable() && isReturn(*static_cast<QKeyEvent*>(event))) {
            pressBySpace(*button, *static_cast<QKeyEvent*>(event));
            return true;
        }
        break;
    case QEvent::FocusIn:
        // Qt remembers for good that the keyboard once moved the focus; a click shall show no ring then.
        if (widget && static_cast<QFocusEvent*>(event)->reason() == Qt::MouseFocusReason) {
            widget->window()->setAttribute(Qt::WA_KeyboardFocusChange, false);
        }
        break;
    case QEvent::EnabledChange:
    case QEvent::PaletteChange:
        if (widget && (qobject_cast<QLineEdit*>(widget) || isEditor(widget))) {
            inkField(*widget);
        }
        break;
    default:
        break;
    }
    return QProxyStyle::eventFilter(watched, event);
}

} // namespace kestu
