// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/PortalAppearance.h"

#include "support/PrivateBus.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::waitUntil;

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString settings = u"org.freedesktop.portal.Settings"_s;
const QString appearanceGroup = u"org.freedesktop.appearance"_s;

/// In this very thread: it can answer only while nobody blocks the thread, so never at once.
class Portal final : public QDBusVirtualObject {
public:
    Portal(QDBusConnection bus, std::optional<uint> atStart)
        : m_bus(std::move(bus))
        , m_scheme(atStart) {
        EXPECT_TRUE(m_bus.registerVirtualObject(path, this));
        EXPECT_TRUE(m_bus.registerService(service));
    }
    ~Portal() override { m_bus.unregisterService(service); }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*connection*/) override {
        const bool isKnown = message.interface() == settings && message.member() == u"Read" &&
                             message.arguments() == QVariantList{appearanceGroup, u"color-scheme"_s};
        if (!isKnown || !m_scheme) {
            return m_bus.send(
                message.createErrorReply(u"org.freedesktop.portal.Error.NotFound"_s, u"none"_s));
        }
        const auto inner = QVariant::fromValue(QDBusVariant(*m_scheme));
        return m_bus.send(message.createReply(QVariant::fromValue(QDBusVariant(inner))));
    }

    void announce(const QString& group, const QString& key, uint value) {
        auto signal = QDBusMessage::createSignal(path, settings, u"SettingChanged"_s);
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        m_bus.send(signal);
    }

private:
    QDBusConnection m_bus;
    std::optional<uint> m_scheme;
};

bool becomes(const PortalAppearance& appearance, std::optional<ColorScheme> scheme) {
    return waitUntil([&] { return appearance.colorScheme() == scheme; });
}

TEST(PortalAppearanceTest, AsksWithoutWaitingAndFollowsEveryChange) {
    test::PrivateBus bus;
    Portal portal(bus.connect(), 1);
    QElapsedTimer timer;
    timer.start();
    const PortalAppearance appearance(bus.connect());
    EXPECT_LT(timer.elapsed(), 300) << "it waited for the answer";
    const QSignalSpy changes(&appearance, &PortalAppearance::colorSchemeChanged);
    EXPECT_TRUE(becomes(appearance, ColorScheme::dark));

    portal.announce(u"org.gnome.desktop.interface"_s, u"color-scheme"_s, 2); // another setting, same name
    portal.announce(appearanceGroup, u"contrast"_s, 2);
    portal.announce(appearanceGroup, u"color-scheme"_s, 1);
    portal.announce(appearanceGroup, u"color-scheme"_s, 0);
    EXPECT_TRUE(becomes(appearance, std::nullopt));
    portal.announce(appearanceGroup, u"color-scheme"_s, 2);
    EXPECT_TRUE(becomes(appearance, ColorScheme::light));
    EXPECT_EQ(changes.count(), 3);
}

TEST(PortalAppearanceTest, FindsAPortalThatStartsLaterAndForgetsOneThatGoes) {
    test::PrivateBus bus;
    const PortalAppearance appearance(bus.connect());
    const QSignalSpy changes(&appearance, &PortalAppearance::colorSchemeChanged);
    EXPECT_FALSE(waitUntil([&] { return appearance.colorScheme().has_value(); }, 100));
    for (int round = 1; round <= 2; ++round) {
        {
            Portal portal(bus.connect(), 2);
            EXPECT_TRUE(becomes(appearance, ColorScheme::light));
            portal.announce(appearanceGroup, u"color-scheme"_s, 1);
            EXPECT_TRUE(becomes(appearance, ColorScheme::dark));
        }
        EXPECT_TRUE(becomes(appearance, std::nullopt));
        EXPECT_EQ(changes.count(), 3 * round);
    }
}

TEST(PortalAppearanceTest, HearsTheFirstChangeOfAPortalThatKnowsNoSettingYet) {
    test::PrivateBus bus;
    Portal portal(bus.connect(), std::nullopt);
    const PortalAppearance appearance(bus.connect());
    EXPECT_FALSE(waitUntil([&] { return appearance.colorScheme().has_value(); }, 100));
    portal.announce(appearanceGroup, u"color-scheme"_s, 1);
    EXPECT_TRUE(becomes(appearance, ColorScheme::dark));
}

} // namespace
} // namespace kestu
