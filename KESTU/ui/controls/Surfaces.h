// SPDX-License-Identifier: GPL-3.0-or-later
//
// What lies behind and between other widgets and shows what cannot be clicked: cards, hairlines, icons, a
// project's dot, and what a screen without content says. All belong to their parent widgets.
#pragma once

#include "ui/theme/Theme.h"

#include <QWidget>

namespace kestu {

class Card final : public QWidget {
    Q_OBJECT

public:
    enum class Kind { outer, inner, onSheet };

    explicit Card(Kind kind = Kind::outer, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Kind m_kind;
};

class Divider final : public QWidget {
    Q_OBJECT

public:
    explicit Divider(Qt::Orientation orientation = Qt::Horizontal, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

class IconView final : public QWidget {
    Q_OBJECT

public:
    /// `color` names one of the theme's: &Colors::green.
    IconView(const QString& name, int size, QColor Colors::*color = &Colors::textPrimary,
             QWidget* parent = nullptr);

    void setIcon(const QString& name, QColor Colors::*color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_name;
    QColor Colors::*m_color;
};

class ProjectDot final : public QWidget {
    Q_OBJECT

public:
    /// An invalid colour is that of time without a project.
    explicit ProjectDot(const QColor& color, int size = 10, QWidget* parent = nullptr);

    void setColor(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
};

class EmptyState final : public QWidget {
    Q_OBJECT

public:
    EmptyState(const QString& icon, const QString& title, const QString& text = {},
               QWidget* parent = nullptr);
};

} // namespace kestu
