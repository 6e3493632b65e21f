// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WlrOutputPower.h"

#include <wlr-output-power-management-client.h>

#include <utility>

namespace kestu {

class WlrOutputPower::OutputWatch final : public Watch {
public:
    explicit OutputWatch(zwlr_output_power_v1* power)
        : m_power(power) {
        zwlr_output_power_v1_add_listener(power, &listener, this);
    }

    ~OutputWatch() override { zwlr_output_power_v1_destroy(m_power); }
    OutputWatch(const OutputWatch&) = delete;
    OutputWatch& operator=(const OutputWatch&) = delete;

private:
    static void mode(void* data, zwlr_output_power_v1*, std::uint32_t mode) {
        static_cast<OutputWatch*>(data)->isOn = mode != ZWLR_OUTPUT_POWER_V1_MODE_OFF;
    }

    /// It will tell nothing more.
    static void failed(void* data, zwlr_output_power_v1*) { static_cast<OutputWatch*>(data)->isOn.reset(); }

    static constexpr zwlr_output_power_v1_listener listener{.mode = mode, .failed = failed};

    zwlr_output_power_v1* m_power;
};

WlrOutputPower::WlrOutputPower(WaylandConnection& connection)
    : OutputPower(connection, zwlr_output_power_manager_v1_interface) {}

WlrOutputPower::~WlrOutputPower() {
    forgetAll();
}

void WlrOutputPower::bindManager(const WaylandGlobal& global) {
    m_manager =
        m_connection.bind<zwlr_output_power_manager_v1>(global, zwlr_output_power_manager_v1_interface, 1);
}

void WlrOutputPower::dropManager() {
    zwlr_output_power_manager_v1_destroy(std::exchange(m_manager, nullptr));
}

std::unique_ptr<OutputPower::Watch> WlrOutputPower::watch(wl_output* output) {
    return std::make_unique<OutputWatch>(zwlr_output_power_manager_v1_get_output_power(m_manager, output));
}

} // namespace kestu
