// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FailureDialog.h"

#include <QMessageBox>

namespace kestu {

void showFailure(const QString& message) {
    QMessageBox dialog(QMessageBox::Critical, QStringLiteral("KESTU"), message);
    // The message may hold a path or SQL with angle brackets.
    dialog.setTextFormat(Qt::PlainText);
    dialog.addButton(QStringLiteral("終了"), QMessageBox::AcceptRole);
    dialog.exec();
}

} // namespace kestu
