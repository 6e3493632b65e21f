// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FakeCompositor.h"

#include <QFile>

#include <ext-idle-notify-server.h>
#include <kde-dpms-server.h>
#include <wlr-foreign-toplevel-management-server.h>
#include <wlr-output-power-management-server.h>

#include <sys/eventfd.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <utility>

namespace kestu::test {
namespace {

constexpr std::uint32_t longNotification = 200; // in milliseconds; tests ask for shorter ones to probe

const wl_interface* interfaceOf(FakeCompositor::Kind kind) {
    const std::array<const wl_interface*, FakeCompositor::kinds> interfaces{
        &zwlr_foreign_toplevel_manager_v1_interface,
        &zwlr_foreign_toplevel_handle_v1_interface,
        &ext_idle_notifier_v1_interface,
        &ext_idle_notification_v1_interface,
        &ext_idle_notification_v1_interface,
        &zwlr_output_power_manager_v1_interface,
        &zwlr_output_power_v1_interface,
        &org_kde_kwin_dpms_manager_interface,
        &org_kde_kwin_dpms_interface,
        &wl_seat_interface,
        &wl_output_interface};
    return interfaces[kind];
}

void destroy(wl_client*, wl_resource* resource) {
    wl_resource_destroy(resource);
}

} // namespace

/// What clients may ask.
struct FakeCompositor::Requests {
    static FakeCompositor& owner(wl_resource* resource) {
        return *static_cast<FakeCompositor*>(wl_resource_get_user_data(resource));
    }

    static void bind(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        const auto& global = *static_cast<Global*>(data);
        global.owner->keep(global.kind, global.number, client, static_cast<int>(version), id);
    }

    static void forget(wl_resource* resource) {
        for (auto& objects : owner(resource).m_objects) {
            std::erase_if(objects, [resource](const Object& object) { return object.resource == resource; });
        }
    }

    static void notify(wl_resource* notifier, std::uint32_t id, std::uint32_t timeout, wl_resource* seat) {
        FakeCompositor& self = owner(notifier);
        const Kind kind = timeout >= longNotification ? FakeCompositor::notification : FakeCompositor::probe;
        auto* resource = self.keep(kind, self.numberOf(FakeCompositor::seat, seat),
                                   wl_resource_get_client(notifier), wl_resource_get_version(notifier), id);
        static const struct ext_idle_notification_v1_interface requests { .destroy = destroy };
        wl_resource_set_implementation(resource, &requests, &self, forget);
    }

    static void stop(wl_client*, wl_resource* manager) {
        zwlr_foreign_toplevel_manager_v1_send_finished(manager);
        wl_resource_destroy(manager);
    }

    static void plain(wl_client*, wl_resource* notifier, std::uint32_t id, std::uint32_t timeout,
                      wl_resource* seat) {
        owner(notifier).m_isInputAlone = false;
        notify(notifier, id, timeout, seat);
    }

    static void ofInput(wl_client*, wl_resource* notifier, std::uint32_t id, std::uint32_t timeout,
                        wl_resource* seat) {
        notify(notifier, id, timeout, seat);
        owner(notifier).m_isInputAlone = true;
    }

    static void wlrPower(wl_client* client, wl_resource* manager, std::uint32_t id, wl_resource* output) {
        FakeCompositor& self = owner(manager);
        auto* resource = wl_resource_create(client, &zwlr_output_power_v1_interface, 1, id);
        static const struct zwlr_output_power_v1_interface requests {
            .set_mode = nullptr, .destroy = destroy
        };
        wl_resource_set_implementation(resource, &requests, &self, forget);
        const int number = self.numberOf(FakeCompositor::output, output);
        self.m_objects[FakeCompositor::wlrOutput].push_back({resource, number});
        zwlr_output_power_v1_send_mode(resource, ZWLR_OUTPUT_POWER_V1_MODE_ON);
    }

    static void kdePower(wl_client* client, wl_resource* manager, std::uint32_t id, wl_resource* output) {
        FakeCompositor& self = owner(manager);
        auto* resource = wl_resource_create(client, &org_kde_kwin_dpms_interface, 1, id);
        static const struct org_kde_kwin_dpms_interface requests { .set = nullptr, .release = destroy };
        wl_resource_set_implementation(resource, &requests, &self, forget);
        const int number = self.numberOf(FakeCompositor::output, output);
        self.m_objects[FakeCompositor::kdeOutput].push_back({resource, number});
        org_kde_kwin_dpms_send_supported(resource, 1);
        org_kde_kwin_dpms_send_mode(resource, ORG_KDE_KWIN_DPMS_MODE_ON);
        org_kde_kwin_dpms_send_done(resource);
    }

    /// Only what KESTU asks is answered: another request ends the test.
    static const void* of(Kind kind) {
        static const struct zwlr_foreign_toplevel_manager_v1_interface ofManager { .stop = stop };
        static const struct zwlr_foreign_toplevel_handle_v1_interface ofWindow {
            .set_maximized = nullptr, .unset_maximized = nullptr, .set_minimized = nullptr,
            .unset_minimized = nullptr, .activate = nullptr, .close = nullptr, .set_rectangle = nullptr,
            .destroy = destroy, .set_fullscreen = nullptr, .unset_fullscreen = nullptr
        };
        static const struct ext_idle_notifier_v1_interface ofNotifier {
            .destroy = destroy, .get_idle_notification = plain, .get_input_idle_notification = ofInput
        };
        static const struct zwlr_output_power_manager_v1_interface ofWlrPower {
            .get_output_power = Requests::wlrPower, .destroy = destroy
        };
        static const struct org_kde_kwin_dpms_manager_interface ofKdePower { .get = Requests::kdePower };
        switch (kind) {
        case FakeCompositor::manager:
            return &ofManager;
        case FakeCompositor::window:
            return &ofWindow;
        case FakeCompositor::notifier:
            return &ofNotifier;
        case FakeCompositor::wlrPower:
            return &ofWlrPower;
        case FakeCompositor::kdePower:
            return &ofKdePower;
        default:
            return nullptr;
        }
    }
};

FakeCompositor::FakeCompositor(const QString& socket, const Offer& offer)
    : m_wakeUp(::eventfd(0, EFD_CLOEXEC)) {
    std::promise<void> ready;
    m_thread = std::thread([this, &socket, &offer, &ready] {
        m_display = wl_display_create();
        EXPECT_EQ(wl_display_add_socket(m_display, QFile::encodeName(socket).constData()), 0);
        for (const auto& [kind, version] : offer) {
            add(kind, version);
        }
        const auto act = [](int wakeUp, std::uint32_t, void* data) {
            auto& self = *static_cast<FakeCompositor*>(data);
            std::uint64_t times = 0;
            (void)!::read(wakeUp, &times, sizeof times);
            if (self.m_action) {
                self.m_action(self);
            } else {
                wl_display_terminate(self.m_display);
            }
            wl_display_flush_clients(self.m_display);
            self.m_done.set_value();
            return 0;
        };
        wl_event_source* const source = wl_event_loop_add_fd(wl_display_get_event_loop(m_display), m_wakeUp,
                                                             WL_EVENT_READABLE, act, this);
        ready.set_value();
        wl_display_run(m_display);
        wl_event_source_remove(source);
        wl_display_destroy_clients(m_display);
        wl_display_destroy(m_display);
    });
    ready.get_future().wait();
}

FakeCompositor::~FakeCompositor() {
    wake();
    does({});
    m_thread.join();
    ::close(m_wakeUp);
}

void FakeCompositor::does(const std::function<void(FakeCompositor&)>& action) {
    m_action = action;
    m_done = {};
    auto done = m_done.get_future();
    (void)!::eventfd_write(m_wakeUp, 1);
    done.wait();
}

void FakeCompositor::hang() {
    m_awake.emplace();
    std::promise<void> hangs;
    m_done = {};
    m_action = [awake = m_awake->get_future().share(), &hangs](FakeCompositor&) {
        hangs.set_value();
        awake.wait();
    };
    auto begun = hangs.get_future();
    (void)!::eventfd_write(m_wakeUp, 1);
    begun.wait();
}

void FakeCompositor::wake() {
    if (m_awake) {
        auto done = m_done.get_future();
        m_awake->set_value();
        done.wait();
        m_awake.reset();
    }
}

int FakeCompositor::add(Kind kind, int version) {
    const int number = m_next[kind]++;
    auto global = std::make_unique<Global>(Global{this, kind, number, nullptr});
    global->global = wl_global_create(m_display, interfaceOf(kind), version, global.get(), Requests::bind);
    m_globals.push_back(std::move(global));
    return number;
}

void FakeCompositor::remove(Kind kind, int number) {
    std::erase_if(m_globals, [&](const auto& global) {
        const bool isMeant = global->kind == kind && global->number == number;
        if (isMeant) {
            wl_global_destroy(global->global);
        }
        return isMeant;
    });
}

wl_resource* FakeCompositor::keep(Kind kind, int number, wl_client* client, int version, std::uint32_t id) {
    auto* resource = wl_resource_create(client, interfaceOf(kind), version, id);
    wl_resource_set_implementation(resource, Requests::of(kind), this, Requests::forget);
    m_objects[kind].push_back({resource, number});
    return resource;
}

int FakeCompositor::numberOf(Kind kind, wl_resource* resource) const {
    for (const Object& object : m_objects[kind]) {
        if (object.resource == resource) {
            return object.number;
        }
    }
    ADD_FAILURE() << "an object that nobody has";
    return -1;
}

void FakeCompositor::open(int number, const char* appId, const char* title, const States& states) {
    const std::vector<Object> managers = m_objects[manager];
    for (const Object& to : managers) {
        auto* handle = keep(window, number, wl_resource_get_client(to.resource),
                            wl_resource_get_version(to.resource), 0);
        zwlr_foreign_toplevel_manager_v1_send_toplevel(to.resource, handle);
    }
    if (appId) {
        tell(window, number, zwlr_foreign_toplevel_handle_v1_send_app_id, appId);
    }
    if (title) {
        this->title(number, title);
    }
    this->states(number, states);
    done(number);
}

void FakeCompositor::title(int number, const char* title) {
    tell(window, number, zwlr_foreign_toplevel_handle_v1_send_title, title);
}

void FakeCompositor::states(int number, const States& states) {
    wl_array array;
    wl_array_init(&array);
    for (const std::uint32_t state : states) {
        *static_cast<std::uint32_t*>(wl_array_add(&array, sizeof state)) = state;
    }
    tell(window, number, zwlr_foreign_toplevel_handle_v1_send_state, &array);
    wl_array_release(&array);
}

void FakeCompositor::done(int number) {
    tell(window, number, zwlr_foreign_toplevel_handle_v1_send_done);
}

void FakeCompositor::close(int number) {
    tell(window, number, zwlr_foreign_toplevel_handle_v1_send_closed);
}

} // namespace kestu::test
