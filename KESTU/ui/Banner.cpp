// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Banner.h"

#include "app/AppModel.h"
#include "ui/Commands.h"
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

Banner::Banner(const QString& title, TextLabel* text, QWidget* buttons)
    : m_body(new QHBoxLayout)
    , m_buttons(buttons) {
    auto* heading = new TextLabel(title, TextStyle::callout, ink::primary, Overflow::elideRight);
    heading->setFont(semibold(heading->font()));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(heading);
    texts->addWidget(text);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(gap);
    layout->addWidget(
        new IconView(QStringLiteral("exclamationmark.triangle.fill"), metrics::iconBanner, &Colors::orange));
    layout->addLayout(m_body, 1);
    m_body->setSpacing(gap);
    m_body->addLayout(texts, 1);
    if (m_buttons) {
        m_body->addWidget(m_buttons);
    }
}

void Banner::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const bool isNarrow = width() < narrow;
    m_body->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    if (m_buttons) {
        m_body->setAlignment(m_buttons, isNarrow ? Qt::AlignLeft : Qt::Alignment());
    }
}

void Banner::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), colorsOf(palette()).bannerFill);
}

UnseenBanner::UnseenBanner(AppModel& model)
    : UnseenBanner(model, new TextLabel({}, TextStyle::caption, ink::secondary, Overflow::wrap)) {}

UnseenBanner::UnseenBanner(AppModel& model, TextLabel* text)
    : Banner(unseenText(), text, nullptr) {
    const auto refresh = [&model, text] { text->setText(model.whyUnseen()); };
    connect(&model, &AppModel::whyUnseenChanged, text, refresh);
    refresh();
}

} // namespace kestu
