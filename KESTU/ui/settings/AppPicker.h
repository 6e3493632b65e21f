// SPDX-License-Identifier: GPL-3.0-or-later
//
// Picks one application of a list and stands empty again. A choice counts at once, so only the open list
// gives one: neither the wheel that scrolls the page nor a stray key does. It belongs to its parent widget.
#pragma once

#include "ui/controls/Picker.h"

#include <QMap>

namespace kestu {

class AppPicker final : public Picker {
    Q_OBJECT

public:
    explicit AppPicker(QWidget* parent = nullptr);

    /// Bundle id -> name. An open list stays as it is until it is closed.
    void setApps(const QMap<QString, QString>& apps);

    void showPopup() override;

Q_SIGNALS:
    void picked(const QString& bundleId, const QString& name);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fill();
    void pick(int index);

    QMap<QString, QString> m_apps;
    QMap<QString, QString> m_listed;
};

} // namespace kestu
