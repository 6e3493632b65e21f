// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/FakeShell.h"

#include <QDBusVariant>

#include <gtest/gtest.h>

#include <chrono>
#include <utility>

namespace kestu::test {

using namespace Qt::StringLiterals;

namespace {

const QString shellName = u"org.gnome.Shell"_s;
const QString windowName = u"jp.kestu.FocusedWindow"_s;
const QString windowPath = u"/jp/kestu/FocusedWindow"_s;

} // namespace

FakeShell::FakeShell(QDBusConnection bus, ShellSettings& settings, ExtensionState state)
    : m_bus(std::move(bus))
    , m_settings(settings)
    , m_state(state) {
    EXPECT_TRUE(m_bus.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath));
    EXPECT_TRUE(m_bus.registerService(shellName));
    if (state == active) {
        EXPECT_TRUE(m_bus.registerService(windowName));
    }
}

FakeShell::~FakeShell() {
    m_bus.unregisterService(windowName);
    m_bus.unregisterService(shellName);
    m_bus.unregisterObject(u"/"_s, QDBusConnection::UnregisterTree);
}

bool FakeShell::handleMessage(const QDBusMessage& message, const QDBusConnection& /*connection*/) {
    return m_bus.send(answer(message));
}

QDBusMessage FakeShell::answer(const QDBusMessage& message) {
    const QString method = message.member();
    if (method == u"GetExtensionInfo") {
        return message.createReply(info());
    }
    if (method == u"EnableExtension") {
        const bool isKnown = m_state != none;
        QMetaObject::invokeMethod(
            this, [this] { enable(); }, Qt::QueuedConnection);
        return message.createReply(isKnown);
    }
    if (method == u"GetActive") {
        return message.createReply(m_isLocked);
    }
    if (method == u"Get" && message.path() == windowPath && message.interface() == windowName) {
        return message.createReply(m_window);
    }
    const QVariant property = message.path() == windowPath ? m_version : QVariant(u"43.9"_s);
    return message.createReply(QVariant::fromValue(QDBusVariant(property)));
}

QVariantMap FakeShell::info() const {
    return m_state == none ? QVariantMap()
                           : QVariantMap{{u"uuid"_s, extensionId}, {u"state"_s, double(m_state)}};
}

void FakeShell::enable() {
    ++m_enableCalls;
    if (m_state != none) {
        FakeShellSettings(m_settings).enable(extensionId);
        become(active);
    }
}

void FakeShell::become(ExtensionState state) {
    m_state = state;
    auto signal = QDBusMessage::createSignal(u"/org/gnome/Shell"_s, u"org.gnome.Shell.Extensions"_s,
                                             u"ExtensionStateChanged"_s);
    signal << extensionId << info();
    m_bus.send(signal);
    if (state == active) {
        m_bus.registerService(windowName);
    } else {
        m_bus.unregisterService(windowName);
    }
}

void FakeShell::lock(bool isLocked) {
    become(isLocked ? inactive : active);
    m_isLocked = isLocked;
    auto signal = QDBusMessage::createSignal(u"/org/gnome/ScreenSaver"_s, u"org.gnome.ScreenSaver"_s,
                                             u"ActiveChanged"_s);
    signal << isLocked;
    m_bus.send(signal);
}

void FakeShell::tell(const QVariant& window) {
    auto signal = QDBusMessage::createSignal(windowPath, windowName, u"Changed"_s);
    signal << window;
    m_bus.send(signal);
}

QVariantMap FakeShell::window(qulonglong id, const QString& title) {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return {{u"id"_s, id},
            {u"pid"_s, 4711},
            {u"app"_s, u"org.example.Editor.desktop"_s},
            {u"sandbox"_s, QString()},
            {u"gtk"_s, QString()},
            {u"class"_s, u"org.example.Editor"_s},
            {u"instance"_s, u"org.example.Editor"_s},
            {u"isDesktop"_s, false},
            {u"isFullscreen"_s, false},
            {u"title"_s, title},
            {u"at"_s, qlonglong(std::chrono::duration_cast<std::chrono::microseconds>(now).count())}};
}

} // namespace kestu::test
