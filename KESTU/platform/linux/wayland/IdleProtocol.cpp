// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/IdleProtocol.h"

#include <ext-idle-notify-client.h>
#include <kde-idle-client.h>

#include <utility>

namespace kestu {
namespace {

constexpr std::uint32_t newestVersion = 2;

std::uint32_t inMilliseconds(std::chrono::milliseconds time) {
    return static_cast<std::uint32_t>(time.count());
}

/// Both protocols have the same two events, under other names.
template<typename Object>
class Notification final : public IdleNotification {
public:
    Notification(Object* object, News news, int (*listen)(Object*, Notification*), void (*destroy)(Object*))
        : m_object(object)
        , m_news(std::move(news))
        , m_destroy(destroy) {
        listen(object, this);
    }

    ~Notification() override { m_destroy(m_object); }
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;

    static void idled(void* data, Object*) { static_cast<Notification*>(data)->m_news.idled(); }
    static void resumed(void* data, Object*) { static_cast<Notification*>(data)->m_news.resumed(); }

private:
    Object* m_object;
    News m_news;
    void (*m_destroy)(Object*);
};

using Common = Notification<ext_idle_notification_v1>;
using OfKde = Notification<org_kde_kwin_idle_timeout>;

constexpr ext_idle_notification_v1_listener commonListener{.idled = Common::idled,
                                                           .resumed = Common::resumed};
constexpr org_kde_kwin_idle_timeout_listener kdeListener{.idle = OfKde::idled, .resumed = OfKde::resumed};

class CommonProtocol final : public IdleProtocol {
public:
    explicit CommonProtocol(ext_idle_notifier_v1* notifier)
        : m_notifier(notifier) {}
    ~CommonProtocol() override { ext_idle_notifier_v1_destroy(m_notifier); }
    CommonProtocol(const CommonProtocol&) = delete;
    CommonProtocol& operator=(const CommonProtocol&) = delete;

    [[nodiscard]] std::unique_ptr<IdleNotification> notify(wl_seat* seat, std::chrono::milliseconds time,
                                                           IdleNotification::News news) override {
        auto* object =
            looksAtInputAlone()
                ? ext_idle_notifier_v1_get_input_idle_notification(m_notifier, inMilliseconds(time), seat)
                : ext_idle_notifier_v1_get_idle_notification(m_notifier, inMilliseconds(time), seat);
        const auto listen = [](ext_idle_notification_v1* to, Common* data) {
            return ext_idle_notification_v1_add_listener(to, &commonListener, data);
        };
        return std::make_unique<Common>(object, std::move(news), listen, ext_idle_notification_v1_destroy);
    }

    [[nodiscard]] bool looksAtInputAlone() const override {
        return ext_idle_notifier_v1_get_version(m_notifier) >= newestVersion;
    }

    [[nodiscard]] bool isPreferred() const override { return true; }

private:
    ext_idle_notifier_v1* m_notifier;
};

class KdeProtocol final : public IdleProtocol {
public:
    explicit KdeProtocol(org_kde_kwin_idle* idle)
        : m_idle(idle) {}
    ~KdeProtocol() override { org_kde_kwin_idle_destroy(m_idle); }
    KdeProtocol(const KdeProtocol&) = delete;
    KdeProtocol& operator=(const KdeProtocol&) = delete;

    [[nodiscard]] std::unique_ptr<IdleNotification> notify(wl_seat* seat, std::chrono::milliseconds time,
                                                           IdleNotification::News news) override {
        auto* object = org_kde_kwin_idle_get_idle_timeout(m_idle, seat, inMilliseconds(time));
        const auto listen = [](org_kde_kwin_idle_timeout* to, OfKde* data) {
            return org_kde_kwin_idle_timeout_add_listener(to, &kdeListener, data);
        };
        return std::make_unique<OfKde>(object, std::move(news), listen, org_kde_kwin_idle_timeout_release);
    }

private:
    org_kde_kwin_idle* m_idle;
};

} // namespace

std::unique_ptr<IdleProtocol> IdleProtocol::bind(WaylandConnection& connection, const WaylandGlobal& global) {
    if (global.interface == ext_idle_notifier_v1_interface.name) {
        return std::make_unique<CommonProtocol>(
            connection.bind<ext_idle_notifier_v1>(global, ext_idle_notifier_v1_interface, newestVersion));
    }
    if (global.interface == org_kde_kwin_idle_interface.name) {
        return std::make_unique<KdeProtocol>(
            connection.bind<org_kde_kwin_idle>(global, org_kde_kwin_idle_interface, 1));
    }
    return nullptr;
}

} // namespace kestu
