// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/ColorChoice.h"

#include "ui/controls/Roles.h"
#include "ui/controls/Swatch.h"

#include <QPainter>

namespace kestu {
namespace {

constexpr int diameter = 18;
constexpr int gap = 6;

} // namespace

QString spokenColor(const QColor& color) {
    struct Hue {
        int below;
        const char16_t* name;
    };
    constexpr Hue hues[] = {{15, u"赤"},    {40, u"オレンジ"}, {70, u"黄"},  {165, u"緑"},
                            {210, u"水色"}, {255, u"青"},      {320, u"紫"}, {361, u"赤"}};
    if (color.hslSaturation() < 25) {
        return QStringLiteral("グレー");
    }
    for (const Hue& hue : hues) {
        if (color.hslHue() < hue.below) {
            return QString::fromUtf16(hue.name);
        }
    }
    return color.name();
}

Swatch::Swatch(const QString& hex, QWidget* parent)
    : ChoiceButton(Ring::outside, parent)
    , m_hex(hex) {
    setFixedSize(diameter, diameter);
    setAccessibleName(spokenColor(colorFromText(hex)));
}

void Swatch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colorFromText(m_hex));
    painter.setOpacity(state().enabled ? 1 : 0.4);
    painter.drawEllipse(rect());
}

ColorChoice::ColorChoice(const QStringList& palette, QWidget* parent)
    : QWidget(parent)
    , m_palette(palette) {
    reportRole(this, QAccessible::Grouping);
    setAccessibleName(QStringLiteral("色"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    for (const QString& hex : palette) {
        add(hex);
    }
    setHex({});
}

void ColorChoice::add(const QString& hex) {
    auto* const swatch = new Swatch(hex, this);
    swatch->move(bleed + static_cast<int>(m_swatches.size()) * (diameter + gap), bleed);
    connect(swatch, &Swatch::clicked, this, [this, hex] { choose(hex); });
    connect(swatch, &Swatch::stepped, this, [this, hex](int by) {
        choose(m_palette.at(std::clamp<qsizetype>(m_palette.indexOf(hex) + by, 0, m_palette.size() - 1)));
    });
    m_swatches.push_back(swatch);
}

void ColorChoice::choose(const QString& hex) {
    const bool changed = hex != m_hex;
    setHex(hex);
    if (changed) {
        Q_EMIT hexChosen(hex);
    }
}

void ColorChoice::setHex(const QString& hex) {
    m_hex = hex;
    showChoice(m_swatches, static_cast<int>(m_palette.indexOf(hex)));
    update();
}

QSize ColorChoice::sizeHint() const {
    const int count = static_cast<int>(m_swatches.size());
    return {2 * bleed + count * diameter + std::max(count - 1, 0) * gap, 2 * bleed + diameter};
}

void ColorChoice::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colorsOf(palette()).textPrimary, 2));
    for (const ChoiceButton* const swatch : m_swatches) {
        if (swatch->isChecked()) {
            constexpr qreal radius = 12; // of the middle of a ring of 2, which is 11 to 13
            painter.drawEllipse(QRectF(swatch->geometry()).center(), radius, radius);
        }
    }
}

} // namespace kestu
