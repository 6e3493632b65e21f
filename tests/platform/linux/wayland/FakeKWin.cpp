// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/FakeKWin.h"

#include "support/Files.h"

#include <QDBusPendingCall>
#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <utility>

namespace kestu::test {

using namespace Qt::StringLiterals;

namespace {

constexpr int scriptId = 7;

} // namespace

FakeKWin::FakeKWin(QDBusConnection bus, int plasma, Temper temper)
    : m_bus(std::move(bus))
    , m_plasma(plasma)
    , m_temper(temper) {
    EXPECT_TRUE(m_bus.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath));
    EXPECT_TRUE(m_bus.registerService(u"org.kde.KWin"_s));
}

FakeKWin::~FakeKWin() {
    m_bus.unregisterService(u"org.kde.KWin"_s);
    m_bus.unregisterObject(u"/"_s, QDBusConnection::UnregisterTree);
}

bool FakeKWin::handleMessage(const QDBusMessage& message, const QDBusConnection& /*connection*/) {
    const QString plugin = message.arguments().isEmpty() ? QString() : message.arguments().last().toString();
    m_calls << (plugin.isEmpty() ? message.member() : message.member() + u' ' + plugin);
    if (m_temper == Temper::neverAnswers) {
        message.setDelayedReply(true);
        return true;
    }
    return m_bus.send(answer(message));
}

QDBusMessage FakeKWin::answer(const QDBusMessage& message) {
    const QString plugin = message.arguments().isEmpty() ? QString() : message.arguments().last().toString();
    if (m_temper == Temper::isStarting) {
        return message.createErrorReply(u"org.freedesktop.DBus.Error.UnknownObject"_s, u"not yet"_s);
    }
    if (message.path() != u"/Scripting") {
        return run(message);
    }
    if (message.member() == u"loadScript") {
        return load(message);
    }
    if (message.member() == u"unloadScript") {
        m_loaded.remove(plugin);
        return message.createReply(m_running.remove(plugin) > 0);
    }
    if (message.member() == u"start") {
        startLoaded();
        return message.createReply();
    }
    return message.createReply(m_running.contains(plugin) || m_loaded.contains(plugin)); // isScriptLoaded
}

QDBusMessage FakeKWin::load(const QDBusMessage& message) {
    const QString plugin = message.arguments().at(1).toString();
    if (m_temper == Temper::refusesToLoad || m_running.contains(plugin)) {
        return message.createReply(-1);
    }
    m_loaded.insert(plugin, message.arguments().at(0).toString());
    return message.createReply(scriptId);
}

QDBusMessage FakeKWin::run(const QDBusMessage& message) {
    const QString path = (m_plasma == 5 ? u"/%1"_s : u"/Scripting/Script%1"_s).arg(scriptId);
    if (m_temper == Temper::cannotRun || message.path() != path || message.member() != u"run") {
        return message.createErrorReply(u"org.freedesktop.DBus.Error.UnknownObject"_s, u"no such script"_s);
    }
    if (m_temper == Temper::dropsAtRun) {
        m_loaded.clear();
    } else if (m_temper != Temper::runsAnother) {
        startLoaded();
    }
    return message.createReply();
}

void FakeKWin::startLoaded() {
    static const QRegularExpression number(u"callDBus\\(\"(:[0-9.]+)\""_s);
    for (const auto& [plugin, file] : m_loaded.asKeyValueRange()) {
        m_running.insert(plugin, number.match(QString::fromUtf8(contentsOf(file))).captured(1));
    }
    m_loaded.clear();
}

void FakeKWin::tell(const QByteArray& json) {
    for (const QString& number : std::as_const(m_running)) {
        auto call = QDBusMessage::createMethodCall(number, u"/jp/kestu/KWinWindows"_s,
                                                   u"jp.kestu.KWinWindows"_s, u"InFront"_s);
        call << QString::fromUtf8(json);
        m_bus.asyncCall(call);
    }
}

QByteArray FakeKWin::window(const QString& id, const QString& title, qint64 processId,
                            const QString& windowClass, const QString& entry) {
    const QJsonObject facts{{u"id"_s, id},
                            {u"pid"_s, processId},
                            {u"name"_s, u"editor"_s},
                            {u"class"_s, windowClass},
                            {u"entry"_s, entry},
                            {u"isDesktop"_s, false},
                            {u"title"_s, title},
                            {u"at"_s, QDateTime::currentMSecsSinceEpoch()}};
    return QJsonDocument(facts).toJson();
}

} // namespace kestu::test
