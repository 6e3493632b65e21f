// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/Icons.h"

#include "ui/theme/Strokes.h"
#include "ui/theme/Theme.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace kestu {
namespace {

QByteArray drawingOf(QStringView name, const QColor& color) {
    QFile file(QStringLiteral(":/kestu/icons/%1.svg").arg(name));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll().replace("currentColor", color.name(QColor::HexRgb).toLatin1());
}

/// Strokes of an icon overlap, so its opacity is laid over the finished drawing.
void fade(QPixmap& pixmap, float opacity) {
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(pixmap.rect(), QColor::fromRgbF(0, 0, 0, opacity));
}

/// `size` is in pixels of the device.
QPixmap rendered(QStringView name, QSize size, const QColor& color) {
    const QByteArray drawing = drawingOf(name, color);
    if (drawing.isEmpty() || size.isEmpty()) {
        return {};
    }
    QSvgRenderer renderer(drawing);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    // Strokes thinner than a pixel are painted as crude hairlines, so they are drawn large and averaged.
    constexpr int oversampling = 4;
    QImage image(size * oversampling, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, image.rect());
    painter.end();
    QPixmap pixmap = QPixmap::fromImage(image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    if (color.alpha() < 255) {
        fade(pixmap, color.alphaF());
    }
    return pixmap;
}

QPixmap cached(QStringView name, QSize size, const QColor& color) {
    const QString key = QStringLiteral("kestu/%1/%2x%3/%4")
                            .arg(name)
                            .arg(size.width())
                            .arg(size.height())
                            .arg(color.rgba(), 8, 16);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = rendered(name, size, color);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

class InkEngine final : public QIconEngine {
public:
    InkEngine(QString name, QPalette::ColorRole role)
        : m_name(std::move(name))
        , m_role(role) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        paintIcon(*painter, rect, m_name, colorOf(mode));
    }

    /// `size` is in pixels of the device: the scaledPixmap that calls this is left to Qt, for what the size
    /// means there has changed between its versions.
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return cached(m_name, size, colorOf(mode));
    }

    [[nodiscard]] QIconEngine* clone() const override { return new InkEngine(m_name, m_role); }
    [[nodiscard]] QString key() const override { return QStringLiteral("kestu"); }

private:
    [[nodiscard]] QColor colorOf(QIcon::Mode mode) const {
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
        return palette.color(QPalette::Active, m_role);
    }

    QString m_name;
    QPalette::ColorRole m_role;
};

class TrayEngine final : public QIconEngine {
public:
    TrayEngine(QString name, const std::optional<QColor>& ink)
        : m_name(std::move(name))
        , m_ink(ink) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const qreal ratio = painter->device()->devicePixelRatio();
        QPixmap drawing = pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state);
        drawing.setDevicePixelRatio(ratio);
        painter->drawPixmap(rect.topLeft(), drawing);
    }

    /// `size` is in pixels of the device. Seldom asked for, so not kept.
    QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
        return m_ink ? rendered(m_name, size, *m_ink)
                     : rendered(m_name + QStringLiteral(".outlined"), size, Qt::white);
    }

    [[nodiscard]] QIconEngine* clone() const override { return new TrayEngine(m_name, m_ink); }
    [[nodiscard]] QString key() const override { return QStringLiteral("kestu-tray"); }

private:
    QString m_name;
    std::optional<QColor> m_ink;
};

} // namespace

QIcon trayIconOf(QStringView name, const std::optional<QColor>& ink) {
    return QIcon(new TrayEngine(name.toString(), ink)); // the icon owns its engine
}

QIcon iconOf(QStringView name, QPalette::ColorRole role) {
    return QIcon(new InkEngine(name.toString(), role)); // the icon owns its engine
}

void paintIcon(QPainter& painter, const QRectF& rect, QStringView name, const QColor& color) {
    const qreal ratio = painter.device()->devicePixelRatio();
    const QSize size = (rect.size() * ratio).toSize();
    QPixmap pixmap = cached(name, size, color);
    pixmap.setDevicePixelRatio(ratio);
    painter.drawPixmap(snapped(painter, rect).topLeft(), pixmap);
}

QPixmap iconPixmap(QStringView name, QSize size, const QColor& color, qreal devicePixelRatio) {
    QPixmap pixmap = cached(name, (QSizeF(size) * devicePixelRatio).toSize(), color);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

} // namespace kestu
