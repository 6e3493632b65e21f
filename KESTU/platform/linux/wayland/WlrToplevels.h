// SPDX-License-Identifier: GPL-3.0-or-later
//
// The windows of a compositor of the wlroots family, which lists them to its clients. Processes are not in
// that list: sway names them itself.
#pragma once

#include "platform/linux/wayland/SwayTree.h"
#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/linux/wayland/WindowSource.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct zwlr_foreign_toplevel_handle_v1;
struct zwlr_foreign_toplevel_manager_v1;

namespace kestu {

class WlrToplevels final : public WindowSource {
    Q_OBJECT

public:
    /// Both outlive this. It can tell once the connection has told what the compositor offers.
    WlrToplevels(WaylandConnection& connection, SwayTree& sway);
    ~WlrToplevels() override;

    [[nodiscard]] QString name() const override;
    [[nodiscard]] Ability ability() const override;
    [[nodiscard]] std::optional<SeenWindow> front() override;

private:
    struct Toplevel;
    struct Listeners;
    struct Destroy {
        void operator()(zwlr_foreign_toplevel_manager_v1* manager) const;
        void operator()(zwlr_foreign_toplevel_handle_v1* handle) const;
    };

    using Manager = std::unique_ptr<zwlr_foreign_toplevel_manager_v1, Destroy>;
    using Handle = std::unique_ptr<zwlr_foreign_toplevel_handle_v1, Destroy>;

    void bind(const WaylandGlobal& global);
    void leave(std::uint32_t global);
    void forgetAll();
    void decide();
    void follow(Toplevel* front);
    [[nodiscard]] Toplevel* active() const;
    void findProcess();
    void tellLater();
    void tell();

    WaylandConnection& m_connection;
    SwayTree& m_sway;
    Manager m_manager;
    Manager m_leaving;          // told to stop; until it has, new windows may still come from it
    std::uint32_t m_global = 0; // of the manager
    bool m_isFinished = false;  // the manager will tell nothing more
    bool m_couldTell = false;
    std::vector<std::unique_ptr<Toplevel>> m_toplevels;
    std::uint64_t m_activations = 0;

    Toplevel* m_front = nullptr;
    SeenWindow m_seen; // while there is one in front
    bool m_isProcessKnown = false;
    bool m_hasNewFront = false; // that is not told yet
    bool m_hasNewTitle = false;
    bool m_willTell = false;
};

} // namespace kestu
