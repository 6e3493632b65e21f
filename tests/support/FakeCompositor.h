// SPDX-License-Identifier: GPL-3.0-or-later
//
// A compositor without a screen, in a thread of its own: it offers what a test wants, and says what the test
// lets it say.
#pragma once

#include <QString>

#include <wayland-server.h>

#include <array>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace kestu::test {

class FakeCompositor final {
public:
    /// The globals that it offers, and the kinds of objects that a client has of it.
    enum Kind {
        manager,
        window,
        notifier,
        notification,
        probe,
        wlrPower,
        wlrOutput,
        kdePower,
        kdeOutput,
        seat,
        output,
        kinds
    };

    using Offer = std::vector<std::pair<Kind, int>>; // in these versions
    using States = std::vector<std::uint32_t>;

    /// Listens at `socket`.
    FakeCompositor(const QString& socket, const Offer& offer);
    ~FakeCompositor();
    FakeCompositor(const FakeCompositor&) = delete;
    FakeCompositor& operator=(const FakeCompositor&) = delete;

    /// Runs `action` in its thread and waits for that. What it says there is sent in one batch.
    void does(const std::function<void(FakeCompositor&)>& action);

    /// From now on it reads and sends nothing.
    void hang();
    void wake();

    // What follows is for actions.

    /// The number of the new one: 0, 1, 2 of each kind.
    int add(Kind kind, int version = 1);
    void remove(Kind kind, int number = 0);

    /// Calls `send(resource, arguments...)` for every object of this kind and number.
    template<typename Send, typename... Arguments>
    void tell(Kind kind, int number, Send send, Arguments... arguments) {
        const std::vector<Object> objects = m_objects[kind];
        for (const Object& object : objects) {
            if (object.number == number) {
                send(object.resource, arguments...);
            }
        }
    }

    /// Says these of a window, and that this was all; a null text is not said.
    void open(int number, const char* appId, const char* title, const States& states);
    void title(int number, const char* title);
    void states(int number, const States& states);
    void done(int number);
    void close(int number);

    /// How many objects of this kind its clients have.
    [[nodiscard]] int count(Kind kind) const { return static_cast<int>(m_objects[kind].size()); }

    /// Whether the newest notification was asked for input alone.
    [[nodiscard]] bool isInputAlone() const { return m_isInputAlone; }

private:
    struct Object {
        wl_resource* resource;
        int number;
    };
    struct Global {
        FakeCompositor* owner;
        Kind kind;
        int number;
        wl_global* global;
    };
    struct Requests;

    wl_resource* keep(Kind kind, int number, wl_client* client, int version, std::uint32_t id);
    [[nodiscard]] int numberOf(Kind kind, wl_resource* resource) const;

    wl_display* m_display = nullptr;
    int m_wakeUp;
    std::array<std::vector<Object>, kinds> m_objects;
    std::array<int, kinds> m_next{};
    std::vector<std::unique_ptr<Global>> m_globals;
    bool m_isInputAlone = false;
    std::function<void(FakeCompositor&)> m_action; // empty: the end
    std::promise<void> m_done;
    std::optional<std::promise<void>> m_awake; // while it hangs
    std::thread m_thread;
};

} // namespace kestu::test
