// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the outputs of a compositor of the wlroots family are switched off.
#pragma once

#include "platform/linux/wayland/OutputPower.h"

struct zwlr_output_power_manager_v1;

namespace kestu {

class WlrOutputPower final : public OutputPower {
public:
    /// `connection` outlives this.
    explicit WlrOutputPower(WaylandConnection& connection);
    ~WlrOutputPower() override;

private:
    class OutputWatch;

    void bindManager(const WaylandGlobal& global) override;
    void dropManager() override;
    [[nodiscard]] std::unique_ptr<Watch> watch(wl_output* output) override;

    zwlr_output_power_manager_v1* m_manager = nullptr;
};

} // namespace kestu
