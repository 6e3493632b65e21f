// SPDX-License-Identifier: GPL-3.0-or-later
//
// One swatch for each colour of a palette, of which that whose text equals the bound one to the letter
// carries a ring. The rings reach beyond the swatches by `bleed` on all sides. It belongs to its parent
// widget.
#pragma once

#include "ui/controls/ChoiceButton.h"

#include <QStringList>
#include <vector>

namespace kestu {

/// What a listener may call a colour.
[[nodiscard]] QString spokenColor(const QColor& color);

class ColorChoice final : public QWidget {
    Q_OBJECT

public:
    static constexpr int bleed = 5;

    explicit ColorChoice(const QStringList& palette, QWidget* parent = nullptr);

    /// Any text; one that is not in the palette leaves all swatches without a ring.
    void setHex(const QString& hex);
    [[nodiscard]] QString hex() const { return m_hex; }
    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void hexChosen(const QString& hex);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void add(const QString& hex);
    void choose(const QString& hex);

    QString m_hex;
    QStringList m_palette;
    std::vector<ChoiceButton*> m_swatches; // in the order of the palette
};

} // namespace kestu
