// SPDX-License-Identifier: GPL-3.0-or-later
//
// What windows say to KestuStyle, as opposed to what Qt asks it.
#include "ui/theme/ButtonLook.h"
#include "ui/theme/FieldLook.h"
#include "ui/theme/KestuStyle.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QLibraryInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QToolTip>
#include <QTranslator>

namespace kestu {

void setRole(QAbstractButton* button, ButtonRole role) {
    button->setProperty(buttonRoleProperty, static_cast<int>(role));
    button->update();
}

void setSmall(QAbstractButton* button) {
    button->setProperty(buttonSmallProperty, true);
    button->setFont(fontOf(TextStyle::caption));
    button->setIconSize({metrics::iconSmall, metrics::iconSmall});
}

void setOnce(QAbstractButton* button) {
    button->setProperty(onceProperty, true);
}

void setBorderless(QAbstractButton* button) {
    button->setFont(fontOf(TextStyle::caption));
    if (auto* push = qobject_cast<QPushButton*>(button)) {
        push->setFlat(true);
    } else if (auto* tool = qobject_cast<QToolButton*>(button)) {
        tool->setAutoRaise(true);
    }
}

void setPlain(QLineEdit* field) {
    field->setProperty(plainFieldProperty, true);
}

void reserveTrailing(QAbstractSpinBox* field, int width) {
    field->setProperty(trailingProperty, width);
}

void setWrong(QWidget* field, bool wrong) {
    field->setProperty(wrongProperty, wrong);
    field->update();
}

/// What Qt itself says: the menus of text fields, the dialog that asks for a file.
static void speakJapanese(QApplication& application) {
    auto* words = new QTranslator(&application);
    if (words->load(QStringLiteral("qtbase_ja"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QApplication::installTranslator(words);
    }
}

void installStyle(QApplication& application) {
    speakJapanese(application);
    application.setStyle(new KestuStyle); // which the application owns from here on
    for (const Qt::UIEffect effect : {Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateCombo,
                                      Qt::UI_AnimateTooltip, Qt::UI_FadeTooltip}) {
        QApplication::setEffectEnabled(effect, false);
    }
}

void applyTheme(QApplication& application, const Colors& colors) {
    const QFont font = fontOf(TextStyle::callout);
    if (application.font() != font) {
        application.setFont(font);
    }
    const QPalette palette = paletteOf(colors);
    application.setPalette(palette);
    QToolTip::setPalette(palette);
    QToolTip::setFont(fontOf(TextStyle::caption));
}

} // namespace kestu
