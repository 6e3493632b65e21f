// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/PackageKitUpdates.h"

#include "support/PrivateBus.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::waitUntil;
using Kind = UpdateAnswer::Kind;

const QString service = u"org.freedesktop.PackageKit"_s;

struct Said {
    QString signal;
    QVariantList arguments;
};

Said package(const QString& id) {
    return {.signal = u"Package"_s, .arguments = {5U, id, u"a summary"_s}};
}

Said finished(uint exit) {
    return {.signal = u"Finished"_s, .arguments = {exit, 120U}};
}

const Said failure{.signal = u"ErrorCode"_s, .arguments = {10U, u"no network"_s}};

/// Says in its n-th transaction what stands n-th in `transactions`.
class PackageService final : public QDBusVirtualObject {
public:
    explicit PackageService(QDBusConnection bus)
        : m_bus(std::move(bus)) {
        EXPECT_TRUE(m_bus.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath));
        EXPECT_TRUE(m_bus.registerService(service));
    }

    ~PackageService() override { m_bus.unregisterService(service); }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*connection*/) override {
        const QString method = message.member();
        calls << method + u'(' + message.signature() + u')';
        if (method == refused) {
            return m_bus.send(message.createErrorReply(QDBusError::AccessDenied, u"refused"_s));
        }
        if (method == u"CreateTransaction") {
            const QString path = u"/%1_transaction"_s.arg(m_opened++);
            return m_bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
        }
        m_asking << message.path();
        return m_bus.send(message.createReply()) && (isHolding || sayAll());
    }

    bool sayAll() {
        for (const QString& path : std::exchange(m_asking, {})) {
            for (const Said& said : transactions.value(path.mid(1, 1).toInt())) {
                auto signal = QDBusMessage::createSignal(path, service + u".Transaction"_s, said.signal);
                signal.setArguments(said.arguments);
                m_bus.send(signal);
            }
        }
        return true;
    }

    QList<QList<Said>> transactions;
    QString refused; // the name of a method
    bool isHolding = false;
    QStringList calls;

private:
    QDBusConnection m_bus;
    int m_opened = 0;
    QStringList m_asking; // transactions that wait for their answer
};

class PackageKitUpdatesTest : public testing::Test {
protected:
    std::function<void(const UpdateAnswer&)> keep() {
        return [this](const UpdateAnswer& answer) { m_answers.push_back(answer); };
    }

    /// The only answer to one check; fails when there is none or another one follows.
    UpdateAnswer ask(const QDBusConnection& bus, std::chrono::milliseconds patience = 1min) {
        m_answers.clear();
        PackageKitUpdates updates(bus, patience);
        updates.check(keep());
        EXPECT_TRUE(m_answers.empty()) << "answered within the call";
        EXPECT_TRUE(waitUntil([&] { return !m_answers.empty(); }));
        EXPECT_FALSE(waitUntil([&] { return m_answers.size() != 1; }, 100));
        return m_answers.empty() ? UpdateAnswer() : m_answers.front();
    }

    test::PrivateBus m_bus;
    std::vector<UpdateAnswer> m_answers;
};

TEST_F(PackageKitUpdatesTest, FindsOurOwnPackageAmongTheUpdatesByOneQuestion) {
    struct Case {
        const char* name;
        QList<Said> said;
        UpdateAnswer expected;
    };
    const UpdateAnswer upToDate{.kind = Kind::upToDate, .version = {}};
    const UpdateAnswer unavailable{.kind = Kind::unavailable, .version = {}};
    const Said ours = package(u"kestu;0.2.0-1;amd64;stable"_s);
    for (const Case& each : std::initializer_list<Case>{
             {"ours among others",
              {package(u"bash;5.2-2;amd64;stable"_s), ours, finished(1)},
              {.kind = Kind::available, .version = u"0.2.0-1"_s}},
             {"similar names",
              {package(u"kestu-data;9;all;stable"_s), package(u"libkestu;9;amd64;stable"_s), finished(1)},
              upToDate},
             {"nothing at all", {finished(1)}, upToDate},
             {"not an id", {package(u"kestu"_s), finished(1)}, upToDate},
             {"failed", {finished(2)}, unavailable},
             {"an error first", {failure, ours, finished(1)}, unavailable},
         }) {
        SCOPED_TRACE(each.name);
        PackageService packages(m_bus.connect());
        packages.transactions = {each.said};
        EXPECT_EQ(ask(m_bus.connect()), each.expected);
        EXPECT_EQ(packages.calls, (QStringList{u"CreateTransaction()"_s, u"GetUpdates(t)"_s}));
    }
}

TEST_F(PackageKitUpdatesTest, IsUnavailableWithoutAnAnswer) {
    EXPECT_EQ(ask(m_bus.connect()).kind, Kind::unavailable) << "no such service";
    EXPECT_EQ(ask(QDBusConnection(u"nowhere"_s)).kind, Kind::unavailable) << "no bus";

    PackageService packages(m_bus.connect());
    packages.transactions = {{}, {finished(1)}};
    EXPECT_EQ(ask(m_bus.connect(), 200ms).kind, Kind::unavailable) << "silence";
    for (const QString& method : {u"GetUpdates"_s, u"CreateTransaction"_s}) {
        packages.refused = method;
        EXPECT_EQ(ask(m_bus.connect()).kind, Kind::unavailable) << method.toStdString();
    }
}

TEST_F(PackageKitUpdatesTest, KeepsSeveralChecksApart) {
    PackageService packages(m_bus.connect());
    packages.transactions = {{finished(1)}, {package(u"kestu;3;all;stable"_s)}};
    PackageKitUpdates updates(m_bus.connect());
    updates.check(keep());
    updates.check(keep());
    ASSERT_TRUE(waitUntil([&] { return m_answers.size() == 2; }));
    EXPECT_EQ(m_answers[0].kind, Kind::upToDate);
    EXPECT_EQ(m_answers[1].kind, Kind::available);
}

TEST_F(PackageKitUpdatesTest, IsSilentOnceItIsGone) {
    PackageService packages(m_bus.connect());
    packages.transactions = {{finished(1)}, {finished(1)}, {finished(1)}};
    packages.isHolding = true;
    auto updates = std::make_unique<PackageKitUpdates>(m_bus.connect(), 150ms);
    updates->check(keep());
    ASSERT_TRUE(waitUntil([&] { return packages.calls.size() == 2; }));
    updates.reset();
    packages.sayAll();
    EXPECT_FALSE(waitUntil([&] { return !m_answers.empty(); }, 300)) << "gone while it waited";

    packages.isHolding = false;
    updates = std::make_unique<PackageKitUpdates>(m_bus.connect());
    const auto keepAndEnd = [&](const UpdateAnswer& answer) {
        m_answers.push_back(answer);
        updates.reset();
    };
    updates->check(keepAndEnd);
    updates->check(keepAndEnd);
    EXPECT_TRUE(waitUntil([&] { return !m_answers.empty(); }));
    EXPECT_FALSE(waitUntil([&] { return m_answers.size() > 1; }, 100)) << "gone with the first answer";
}

} // namespace
} // namespace kestu
