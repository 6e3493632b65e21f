// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/KWinDpms.h"

#include <kde-dpms-client.h>

#include <utility>

namespace kestu {

class KWinDpms::OutputWatch final : public Watch {
public:
    explicit OutputWatch(org_kde_kwin_dpms* dpms)
        : m_dpms(dpms) {
        org_kde_kwin_dpms_add_listener(dpms, &listener, this);
    }

    ~OutputWatch() override { org_kde_kwin_dpms_release(m_dpms); }
    OutputWatch(const OutputWatch&) = delete;
    OutputWatch& operator=(const OutputWatch&) = delete;

private:
    static OutputWatch& of(void* data) { return *static_cast<OutputWatch*>(data); }

    static void supported(void* data, org_kde_kwin_dpms*, std::uint32_t supported) {
        of(data).m_isSupported = supported != 0;
    }

    static void mode(void* data, org_kde_kwin_dpms*, std::uint32_t mode) { of(data).m_mode = mode; }

    static void done(void* data, org_kde_kwin_dpms*) {
        of(data).isOn = of(data).m_isSupported ? std::optional(of(data).m_mode == ORG_KDE_KWIN_DPMS_MODE_ON)
                                               : std::nullopt;
    }

    static constexpr org_kde_kwin_dpms_listener listener{.supported = supported, .mode = mode, .done = done};

    org_kde_kwin_dpms* m_dpms;
    bool m_isSupported = false;
    std::uint32_t m_mode = ORG_KDE_KWIN_DPMS_MODE_ON;
};

KWinDpms::KWinDpms(WaylandConnection& connection)
    : OutputPower(connection, org_kde_kwin_dpms_manager_interface) {}

KWinDpms::~KWinDpms() {
    forgetAll();
}

void KWinDpms::bindManager(const WaylandGlobal& global) {
    m_manager = m_connection.bind<org_kde_kwin_dpms_manager>(global, org_kde_kwin_dpms_manager_interface, 1);
}

void KWinDpms::dropManager() {
    org_kde_kwin_dpms_manager_destroy(std::exchange(m_manager, nullptr));
}

std::unique_ptr<OutputPower::Watch> KWinDpms::watch(wl_output* output) {
    return std::make_unique<OutputWatch>(org_kde_kwin_dpms_manager_get(m_manager, output));
}

} // namespace kestu
