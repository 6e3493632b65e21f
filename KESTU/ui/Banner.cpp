// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Banner.h"

#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/Theme.h"

#include <QHBoxLayout>
#include <QPainter>

namespace kestu {
namespace {

constexpr int gap = 12;
constexpr int narrow = 700; // from here on the buttons stand below the texts

} // namespace

Banner::Banner(QWidget* buttons)
    : m_heading(new TextLabel({}, TextStyle::callout, ink::primary, Overflow::elideRight))
    , m_text(new TextLabel({}, TextStyle::caption, ink::secondary, Overflow::wrap))
    , m_body(new QHBoxLayout)
    , m_buttons(buttons) {
    m_heading->setFont(semibold(m_heading->font()));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(m_heading);
    texts->addWidget(m_text);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(gap);
    layout->addWidget(
        new IconView(QStringLiteral("exclamationmark.triangle.fill"), metrics::iconBanner, &Colors::orange));
    layout->addLayout(m_body, 1);
    m_body->setSpacing(gap);
    m_body->addLayout(texts, 1);
    m_body->addWidget(m_buttons);
}

void Banner::say(const QString& title, const QString& text) {
    m_heading->setText(title);
    m_text->setText(text);
}

void Banner::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const bool isNarrow = width() < narrow;
    m_body->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    m_body->setAlignment(m_buttons, isNarrow ? Qt::AlignLeft : Qt::Alignment());
}

void Banner::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), colorsOf(palette()).bannerFill);
}

} // namespace kestu
