// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether KWin's outputs are switched off.
#pragma once

#include "platform/linux/wayland/OutputPower.h"

struct org_kde_kwin_dpms_manager;

namespace kestu {

class KWinDpms final : public OutputPower {
public:
    /// `connection` outlives this.
    explicit KWinDpms(WaylandConnection& connection);
    ~KWinDpms() override;

private:
    class OutputWatch;

    void bindManager(const WaylandGlobal& global) override;
    void dropManager() override;
    [[nodiscard]] std::unique_ptr<Watch> watch(wl_output* output) override;

    org_kde_kwin_dpms_manager* m_manager = nullptr;
};

} // namespace kestu
