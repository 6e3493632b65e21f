// SPDX-License-Identifier: GPL-3.0-or-later
//
// What an input method is composing in a text field: letters that are on the screen, but not yet in the
// field's text. It belongs to the field.
#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace kestu {

class Composition final : public QObject {
    Q_OBJECT

public:
    explicit Composition(QWidget* field);

    [[nodiscard]] const QString& text() const { return m_text; }
    /// Puts the letters into the field as they stand.
    void finish();

Q_SIGNALS:
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_field;
    QString m_text;
};

} // namespace kestu
