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

Banner::Banner(const QString& title, TextLabel* text, QWidget* buttons) {
    auto* heading = new TextLabel(title, TextStyle::callout, ink::primary, Overflow::elideRight);
    heading->setFont(semibold(heading->font()));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(heading);
    texts->addWidget(text);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(12);
    layout->addWidget(
        new IconView(QStringLiteral("exclamationmark.triangle.fill"), metrics::iconBanner, &Colors::orange));
    layout->addLayout(texts, 1);
    if (buttons) {
        layout->addWidget(buttons);
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
