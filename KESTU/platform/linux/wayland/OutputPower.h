// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether all outputs of a Wayland compositor are switched off: what the protocols for it have in common.
// They come and go while we run.
#pragma once

#include "platform/linux/DisplayPower.h"
#include "platform/linux/wayland/WaylandConnection.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

struct wl_output;

namespace kestu {

class OutputPower : public DisplayPower {
    Q_OBJECT

public:
    ~OutputPower() override;

    [[nodiscard]] State state() override;
    [[nodiscard]] bool tellsChanges() const override { return true; }

protected:
    /// What tells of one output; destroyed with it.
    class Watch {
    public:
        virtual ~Watch() = default;

        std::optional<bool> isOn{}; // absent when unknown
    };

    /// `connection` outlives this. `manager` is the interface that gives watches.
    OutputPower(WaylandConnection& connection, const wl_interface& manager);

    virtual void bindManager(const WaylandGlobal& global) = 0;
    virtual void dropManager() = 0;
    [[nodiscard]] virtual std::unique_ptr<Watch> watch(wl_output* output) = 0;

    /// To be called first by the destructors: the watches are of the manager.
    void forgetAll();

    WaylandConnection& m_connection;

private:
    struct Output;

    void add(const WaylandGlobal& global);
    void remove(std::uint32_t name);
    void decide();

    const wl_interface& m_managerInterface;
    std::optional<std::uint32_t> m_manager; // its global
    std::vector<std::unique_ptr<Output>> m_outputs;
    bool m_hasOutputs = false; // or has had some
    State m_told = State::unknown;
};

} // namespace kestu
