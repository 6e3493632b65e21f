// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Surfaces.h"

#include "ui/controls/Painted.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/Icons.h"

#include <QPainter>
#include <QVBoxLayout>

namespace kestu {

Card::Card(Kind kind, QWidget* parent)
    : QWidget(parent)
    , m_kind(kind) {}

void Card::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    paintRounded(painter, rect(), m_kind == Kind::inner ? metrics::radiusInner : metrics::radiusCard,
                 m_kind == Kind::onSheet ? colors.sheetCard : colors.card,
                 {.color = colors.cardBorder, .width = 1});
}

Divider::Divider(Qt::Orientation orientation, QWidget* parent)
    : QWidget(parent) {
    if (orientation == Qt::Horizontal) {
        setFixedHeight(1);
    } else {
        setFixedWidth(1);
    }
}

void Divider::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(contentsRect(), colorsOf(palette()).divider);
}

IconView::IconView(const QString& name, int size, QColor Colors::*color, QWidget* parent)
    : QWidget(parent)
    , m_name(name)
    , m_color(color) {
    setFixedSize(size, size);
}

void IconView::setIcon(const QString& name, QColor Colors::*color) {
    m_name = name;
    m_color = color;
    update();
}

void IconView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintIcon(painter, rect(), m_name, colorsOf(palette()).*m_color);
}

ProjectDot::ProjectDot(const QColor& color, int size, QWidget* parent)
    : QWidget(parent)
    , m_color(color) {
    setFixedSize(size, size);
}

void ProjectDot::setColor(const QColor& color) {
    if (m_color != color) {
        m_color = color;
        update();
    }
}

void ProjectDot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_color.isValid() ? m_color : colorsOf(palette()).unassigned);
    painter.drawEllipse(rect());
}

EmptyState::EmptyState(const QString& icon, const QString& title, const QString& text, QWidget* parent)
    : QWidget(parent) {
    setMinimumHeight(300);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addStretch();
    column->addWidget(new IconView(icon, metrics::iconEmpty, &Colors::textTertiary), 0, Qt::AlignHCenter);
    column->addSpacing(4);
    const auto addText = [column](const QString& shown, TextStyle style, QPalette::ColorRole color) {
        auto* const label = new TextLabel(shown, style, color, Overflow::wrap);
        label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        column->addWidget(label);
    };
    addText(title, TextStyle::title3, ink::primary);
    if (!text.isEmpty()) {
        addText(text, TextStyle::callout, ink::secondary);
    }
    column->addStretch();
}

} // namespace kestu
