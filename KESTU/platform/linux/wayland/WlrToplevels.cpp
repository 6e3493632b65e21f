// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WlrToplevels.h"

#include <wlr-foreign-toplevel-management-client.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace kestu {
namespace {

constexpr std::uint32_t newestVersion = 3;

// Looks at a window that is replaced while sway is asked; a program that switches without end holds nobody.
constexpr int mostLooks = 3;

bool holds(const wl_array& states, std::uint32_t state) {
    const auto* first = static_cast<const std::uint32_t*>(states.data);
    const auto* last = first + states.size / sizeof state;
    return std::find(first, last, state) != last;
}

/// An id is a name, to be shown and compared: what cannot be seen is no part of it.
QString idIn(const char* appId) {
    QString id = QString::fromUtf8(appId);
    id.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
    return id;
}

} // namespace

struct WlrToplevels::Toplevel {
    struct State {
        QString title;
        QString appId;
        bool isActive = false;
        bool isMinimised = false;
    };

    WlrToplevels& owner;
    Handle handle;
    State told{};                 // holds when the window says that this was all
    State state{};                // so far
    std::uint64_t activation = 0; // the higher, the later

    void apply() {
        if (told.isActive && !state.isActive) {
            activation = ++owner.m_activations;
        }
        state = told;
    }
};

struct WlrToplevels::Listeners {
    static Toplevel& of(void* data) { return *static_cast<Toplevel*>(data); }

    static void added(void* data, zwlr_foreign_toplevel_manager_v1* manager,
                      zwlr_foreign_toplevel_handle_v1* handle) {
        auto& owner = *static_cast<WlrToplevels*>(data);
        if (manager != owner.m_manager.get()) {
            zwlr_foreign_toplevel_handle_v1_destroy(handle);
            return;
        }
        owner.m_toplevels.push_back(
            std::make_unique<Toplevel>(Toplevel{.owner = owner, .handle = Handle(handle)}));
        zwlr_foreign_toplevel_handle_v1_add_listener(handle, &toplevel, owner.m_toplevels.back().get());
    }

    static void finished(void* data, zwlr_foreign_toplevel_manager_v1* manager) {
        auto& owner = *static_cast<WlrToplevels*>(data);
        if (manager == owner.m_leaving.get()) {
            owner.m_leaving.reset();
        } else {
            owner.m_isFinished = true;
        }
    }

    static void title(void* data, zwlr_foreign_toplevel_handle_v1*, const char* title) {
        of(data).told.title = QString::fromUtf8(title);
    }

    static void appId(void* data, zwlr_foreign_toplevel_handle_v1*, const char* appId) {
        of(data).told.appId = idIn(appId);
    }

    static void state(void* data, zwlr_foreign_toplevel_handle_v1*, wl_array* states) {
        of(data).told.isActive = holds(*states, ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED);
        of(data).told.isMinimised = holds(*states, ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED);
    }

    static void done(void* data, zwlr_foreign_toplevel_handle_v1*) { of(data).apply(); }

    static void closed(void* data, zwlr_foreign_toplevel_handle_v1*) {
        WlrToplevels& owner = of(data).owner;
        if (owner.m_front == &of(data)) {
            owner.m_front = nullptr;
            owner.m_hasNewFront = true;
        }
        std::erase_if(owner.m_toplevels, [data](const auto& toplevel) { return toplevel.get() == data; });
    }

    static void ignoreOutput(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}

    static void ignoreParent(void*, zwlr_foreign_toplevel_handle_v1*, zwlr_foreign_toplevel_handle_v1*) {}

    static constexpr zwlr_foreign_toplevel_manager_v1_listener manager{.toplevel = added,
                                                                       .finished = finished};
    static constexpr zwlr_foreign_toplevel_handle_v1_listener toplevel{.title = title,
                                                                       .app_id = appId,
                                                                       .output_enter = ignoreOutput,
                                                                       .output_leave = ignoreOutput,
                                                                       .state = state,
                                                                       .done = done,
                                                                       .closed = closed,
                                                                       .parent = ignoreParent};
};

void WlrToplevels::Destroy::operator()(zwlr_foreign_toplevel_manager_v1* manager) const {
    zwlr_foreign_toplevel_manager_v1_destroy(manager);
}

void WlrToplevels::Destroy::operator()(zwlr_foreign_toplevel_handle_v1* handle) const {
    zwlr_foreign_toplevel_handle_v1_destroy(handle);
}

WlrToplevels::WlrToplevels(WaylandConnection& connection, SwayTree& sway)
    : m_connection(connection)
    , m_sway(sway) {
    connect(&connection, &WaylandConnection::globalAdded, this, &WlrToplevels::bind);
    connect(&connection, &WaylandConnection::globalRemoved, this, &WlrToplevels::leave);
    connect(&connection, &WaylandConnection::dispatched, this, &WlrToplevels::decide);
    connect(&connection, &WaylandConnection::broken, this, [this] {
        m_isFinished = true;
        m_leaving.reset();
        decide();
    });
}

WlrToplevels::~WlrToplevels() = default;

QString WlrToplevels::name() const {
    return QStringLiteral("wlr-foreign-toplevel");
}

Ability WlrToplevels::ability() const {
    return {.kind = m_manager ? Ability::Kind::yes : Ability::Kind::no};
}

void WlrToplevels::bind(const WaylandGlobal& global) {
    if (global.interface != zwlr_foreign_toplevel_manager_v1_interface.name) {
        return;
    }
    forgetAll(); // a manager that comes anew takes the place of one that has finished in the same batch
    m_manager.reset(m_connection.bind<zwlr_foreign_toplevel_manager_v1>(
        global, zwlr_foreign_toplevel_manager_v1_interface, newestVersion));
    m_global = global.name;
    zwlr_foreign_toplevel_manager_v1_add_listener(m_manager.get(), &Listeners::manager, this);
}

void WlrToplevels::leave(std::uint32_t global) {
    if (m_manager && global == m_global) {
        zwlr_foreign_toplevel_manager_v1_stop(m_manager.get());
        m_leaving = std::move(m_manager);
        forgetAll();
    }
}

void WlrToplevels::forgetAll() {
    m_isFinished = false;
    m_hasNewFront = m_hasNewFront || m_front;
    m_front = nullptr;
    m_toplevels.clear();
    m_manager.reset();
}

void WlrToplevels::decide() {
    if (m_isFinished) {
        forgetAll();
    }
    follow(active());
    if (m_hasNewFront || m_hasNewTitle) {
        m_sway.noteChange();
        tellLater();
    }
    if (std::exchange(m_couldTell, m_manager != nullptr) != (m_manager != nullptr)) {
        Q_EMIT abilityChanged();
    }
}

void WlrToplevels::follow(Toplevel* front) {
    const Moment now = m_connection.readAt();
    const bool isOther = std::exchange(m_front, front) != front;
    if (isOther) {
        m_hasNewFront = true;
        m_seen = {.facts = {}, .since = now, .titledSince = now};
    }
    if (!front) {
        return;
    }
    if (std::exchange(m_seen.title, front->state.title) != front->state.title && !isOther) {
        m_seen.titledSince = now;
        m_hasNewTitle = true;
    }
    if (std::exchange(m_seen.facts.wmClass, front->state.appId) != front->state.appId) {
        m_hasNewFront = true;
        m_isProcessKnown = false;
    }
    m_isProcessKnown = m_isProcessKnown && !isOther;
}

/// The window that was activated last, where several say that they are.
WlrToplevels::Toplevel* WlrToplevels::active() const {
    Toplevel* last = nullptr;
    for (const auto& toplevel : m_toplevels) {
        const bool isInFront = toplevel->state.isActive && !toplevel->state.isMinimised;
        if (isInFront && (!last || last->activation < toplevel->activation)) {
            last = toplevel.get();
        }
    }
    return last;
}

std::optional<SeenWindow> WlrToplevels::front() {
    m_connection.check();
    findProcess();
    return m_front ? std::optional(m_seen) : std::nullopt;
}

/// sway tells of a switch before it answers: if nothing has switched by then, it speaks of the same window.
void WlrToplevels::findProcess() {
    for (int look = 0; look < mostLooks && m_front && !m_isProcessKnown; ++look) {
        const std::uint64_t asked = m_activations;
        const auto answer = m_sway.ask();
        if (!answer) {
            break;
        }
        m_connection.read();
        if (m_front && m_activations == asked) {
            m_isProcessKnown = answer->focused && answer->focused->appId == m_front->state.appId;
            m_seen.facts.processId = m_isProcessKnown ? answer->focused->processId : 0;
            break;
        }
    }
}

void WlrToplevels::tellLater() {
    // From the event loop: this may run inside a tick, which would drop it.
    if (!std::exchange(m_willTell, true)) {
        QMetaObject::invokeMethod(this, &WlrToplevels::tell, Qt::QueuedConnection);
    }
}

void WlrToplevels::tell() {
    m_willTell = false;
    const bool hasNewTitle = std::exchange(m_hasNewTitle, false);
    if (std::exchange(m_hasNewFront, false)) {
        Q_EMIT frontChanged();
    } else if (hasNewTitle) {
        Q_EMIT titleChanged();
    }
}

} // namespace kestu
