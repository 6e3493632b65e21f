// SPDX-License-Identifier: GPL-3.0-or-later
//
// KWin's scripting on a bus of the test's own: takes scripts, runs them and lets them call, as Plasma 5 and 6
// do, and misbehaves on demand.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QMap>
#include <QStringList>

namespace kestu::test {

class FakeKWin final : public QDBusVirtualObject {
public:
    enum class Temper {
        willing,
        isStarting,
        refusesToLoad,
        cannotRun,
        dropsAtRun,
        runsAnother,
        neverAnswers
    };

    FakeKWin(QDBusConnection bus, int plasma, Temper temper = Temper::willing);
    ~FakeKWin() override;

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

    /// The scripts that KWin has now, by name: the number on the bus that each one calls.
    [[nodiscard]] QMap<QString, QString> running() const { return m_running; }

    /// The calls so far, in their order.
    [[nodiscard]] const QStringList& calls() const { return m_calls; }

    /// As left behind by a copy of KESTU that has crashed.
    void leave(const QString& plugin) { m_running.insert(plugin, {}); }

    void setTemper(Temper temper) { m_temper = temper; }

    /// Every running script calls.
    void tell(const QByteArray& json);

    [[nodiscard]] static QByteArray window(const QString& id, const QString& title, qint64 processId = 4711,
                                           const QString& windowClass = QStringLiteral("org.example.Editor"),
                                           const QString& entry = QStringLiteral("org.example.Editor"));

private:
    [[nodiscard]] QDBusMessage answer(const QDBusMessage& message);
    [[nodiscard]] QDBusMessage load(const QDBusMessage& message);
    [[nodiscard]] QDBusMessage run(const QDBusMessage& message);
    void startLoaded();

    QDBusConnection m_bus;
    int m_plasma;
    Temper m_temper;
    QStringList m_calls;
    QMap<QString, QString> m_loaded;  // file by plugin
    QMap<QString, QString> m_running; // number by plugin
};

} // namespace kestu::test
