// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/Icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>

void initIconResource() {
    // A resource in a static library is dropped by the linker unless somebody asks for it.
    Q_INIT_RESOURCE(icons);
}

namespace kestu {
namespace {

QByteArray sourceOf(QStringView name, const QColor& color) {
    initIconResource();
    QFile file(QStringLiteral(":/kestu/icons/%1.svg").arg(name));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("no icon %s", qPrintable(name.toString()));
    }
    return file.readAll().replace("currentColor", color.name(QColor::HexRgb).toLatin1());
}

QPixmap rendered(QStringView name, const QSize& pixels, const QColor& color) {
    QPixmap pixmap(pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(color.isValid() ? color.alphaF() : 1.0);
    QSvgRenderer(sourceOf(name, color)).render(&painter);
    return pixmap;
}

/// Some trays ask for a picture that is higher than wide.
QRect squareIn(const QRect& rect) {
    const int side = std::min(rect.width(), rect.height());
    return {rect.left() + (rect.width() - side) / 2, rect.top() + (rect.height() - side) / 2, side, side};
}

class IconEngine final : public QIconEngine {
public:
    IconEngine(QStringView name, QPalette::ColorRole ink)
        : m_name(name.toString())
        , m_ink(ink) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        paintIcon(*painter, squareIn(rect), m_name, color(mode));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        QPixmap pixmap(size); // the size asked for is in device pixels
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paintIcon(painter, squareIn(QRect(QPoint(), size)), m_name, color(mode));
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new IconEngine(m_name, m_ink); }

private:
    [[nodiscard]] QColor color(QIcon::Mode mode) const {
        const QPalette palette = QGuiApplication::palette();
        switch (mode) {
        case QIcon::Disabled:
            return colorsOf(palette).textDisabled;
        case QIcon::Selected:
            return Qt::white;
        case QIcon::Normal:
        case QIcon::Active:
            break;
        }
        return palette.color(m_ink);
    }

    QString m_name;
    QPalette::ColorRole m_ink;
};

} // namespace

QIcon iconOf(QStringView name, QPalette::ColorRole ink) {
    return QIcon(new IconEngine(name, ink));
}

QPixmap iconPixmap(QStringView name, const QSize& size, const QColor& color, double devicePixelRatio) {
    const QSize pixels = (QSizeF(size) * devicePixelRatio).toSize();
    const QString key = QStringLiteral("kestu/%1/%2x%3/%4")
                            .arg(name)
                            .arg(pixels.width())
                            .arg(pixels.height())
                            .arg(color.rgba(), 0, 16);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = rendered(name, pixels, color);
        QPixmapCache::insert(key, pixmap);
    }
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

void paintIcon(QPainter& painter, const QRectF& rect, QStringView name, const QColor& color) {
    painter.drawPixmap(rect.topLeft(),
                       iconPixmap(name, rect.size().toSize(), color, painter.device()->devicePixelRatioF()));
}

} // namespace kestu
