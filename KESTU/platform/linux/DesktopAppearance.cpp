// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/DesktopAppearance.h"

#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QtEndian>

#include <cstring>
#include <utility>

namespace kestu {
namespace {

/// Reads values one after the other, as far as there are any.
class Reader final {
public:
    explicit Reader(const QByteArray& bytes)
        : m_bytes(bytes)
        , m_isBigEndian(bytes.startsWith('\1')) {}

    template<typename Number>
    Number number() {
        const char* at = take(sizeof(Number));
        if (!at) {
            return 0;
        }
        return m_isBigEndian ? qFromBigEndian<Number>(at) : qFromLittleEndian<Number>(at);
    }

    /// Texts end on a multiple of four.
    QByteArray text(quint32 length) {
        const char* at = take(length);
        take((4 - length % 4) % 4);
        return at ? QByteArray(at, static_cast<qsizetype>(length)) : QByteArray();
    }

    void skip(std::size_t count) { take(count); }
    [[nodiscard]] bool isValid() const { return m_isValid; }

private:
    const char* take(std::size_t count) {
        m_isValid = m_isValid && count <= static_cast<std::size_t>(m_bytes.size()) - m_at;
        return m_isValid ? m_bytes.constData() + std::exchange(m_at, m_at + count) : nullptr;
    }

    const QByteArray& m_bytes;
    bool m_isBigEndian;
    std::size_t m_at = 0;
    bool m_isValid = true;
};

/// Of the first of the files that has it.
QVariant toolkitSetting(const QStringList& files, const QString& key) {
    for (const QString& file : files) {
        QVariant value = QSettings(file, QSettings::IniFormat).value(QStringLiteral("Settings/") + key);
        if (value.isValid()) {
            return value;
        }
    }
    return {};
}

} // namespace

QStringList toolkitSettingsFiles() {
    QStringList files;
    for (const QString& toolkit : {QStringLiteral("gtk-3.0"), QStringLiteral("gtk-4.0")}) {
        files += QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation,
                                           toolkit + QStringLiteral("/settings.ini"));
    }
    return files;
}

QString themeNameIn(const QByteArray& settings) {
    enum Type { number, text, color };
    Reader reader(settings);
    reader.skip(8); // byte order and serial number
    const auto count = reader.number<quint32>();
    for (quint32 i = 0; i < count && reader.isValid(); ++i) {
        const auto type = reader.number<quint8>();
        reader.skip(1);
        const QByteArray name = reader.text(reader.number<quint16>());
        reader.skip(4); // when it was changed
        if (type == text) {
            const QByteArray value = reader.text(reader.number<quint32>());
            if (name == "Net/ThemeName") {
                return QString::fromUtf8(value);
            }
        } else {
            reader.skip(type == number ? 4 : 8);
        }
    }
    return {};
}

bool isDarkTheme(const QString& name) {
    static const QRegularExpression dark(QStringLiteral("(^|[-_ ])dark($|[-_ ])|inverse$|^BlackMATE$"),
                                         QRegularExpression::CaseInsensitiveOption);
    return dark.match(name).hasMatch();
}

DesktopAppearance::DesktopAppearance(const QDBusConnection& sessionBus,
                                     const std::function<std::unique_ptr<Xcb>()>& connectToServer,
                                     QStringList toolkitFiles)
    : m_portal(sessionBus)
    , m_toolkitFiles(std::move(toolkitFiles)) {
    if (auto xcb = connectToServer()) {
        m_settings = std::make_unique<ManagerProperty>(std::move(xcb), "_XSETTINGS_S", "_XSETTINGS_SETTINGS");
        connect(m_settings.get(), &ManagerProperty::changed, this, &DesktopAppearance::noteScheme);
    }
    if (auto xcb = connectToServer()) {
        m_tray = std::make_unique<ManagerProperty>(std::move(xcb), "_NET_SYSTEM_TRAY_S",
                                                   "_NET_SYSTEM_TRAY_COLORS");
        connect(m_tray.get(), &ManagerProperty::changed, this, &Appearance::trayInkChanged);
    }
    m_firstTheme = themeName();
    m_told = colorScheme();
    connect(&m_portal, &PortalAppearance::colorSchemeChanged, this, &DesktopAppearance::noteScheme);
}

QString DesktopAppearance::themeName() const {
    const QString name = m_settings ? themeNameIn(m_settings->value().bytes) : QString();
    return name.isEmpty() ? toolkitSetting(m_toolkitFiles, QStringLiteral("gtk-theme-name")).toString()
                          : name;
}

std::optional<ColorScheme> DesktopAppearance::colorScheme() const {
    if (const auto scheme = m_portal.colorScheme()) {
        return scheme;
    }
    const QString theme = themeName();
    if (isDarkTheme(theme) ||
        toolkitSetting(m_toolkitFiles, QStringLiteral("gtk-application-prefer-dark-theme")).toBool()) {
        return ColorScheme::dark;
    }
    // A name that says nothing may be a dark theme's, which its palette shows; but only that of the start.
    return theme == m_firstTheme ? std::nullopt : std::optional(ColorScheme::light);
}

void DesktopAppearance::noteScheme() {
    const auto scheme = colorScheme();
    if (std::exchange(m_told, scheme) != scheme) {
        Q_EMIT colorSchemeChanged();
    }
}

/// Twelve numbers of 16 bits, in 32 each: red, green and blue of the foreground and of three kinds of news.
std::optional<Rgb> DesktopAppearance::trayInk() const {
    const QByteArray bytes = m_tray ? m_tray->value().bytes : QByteArray();
    constexpr qsizetype complete = 12 * sizeof(quint32);
    if (bytes.size() < complete) {
        return std::nullopt;
    }
    const auto part = [&bytes](std::size_t index) {
        quint32 value = 0;
        std::memcpy(&value, bytes.constData() + index * sizeof value, sizeof value);
        return static_cast<std::uint8_t>(value >> 8);
    };
    return Rgb{.red = part(0), .green = part(1), .blue = part(2)};
}

} // namespace kestu
