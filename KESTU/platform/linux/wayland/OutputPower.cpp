// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/OutputPower.h"

#include <wayland-client.h>

#include <algorithm>
#include <utility>

namespace kestu {
namespace {

struct DestroyOutput {
    void operator()(wl_output* output) const { wl_output_destroy(output); }
};

using BoundOutput = std::unique_ptr<wl_output, DestroyOutput>;

} // namespace

struct OutputPower::Output {
    std::uint32_t global = 0;
    BoundOutput output;
    std::unique_ptr<Watch> watch{};
};

OutputPower::OutputPower(WaylandConnection& connection, const wl_interface& manager)
    : m_connection(connection)
    , m_managerInterface(manager) {
    connect(&connection, &WaylandConnection::globalAdded, this, &OutputPower::add);
    connect(&connection, &WaylandConnection::globalRemoved, this, &OutputPower::remove);
    connect(&connection, &WaylandConnection::dispatched, this, &OutputPower::decide);
    connect(&connection, &WaylandConnection::broken, this, [this] {
        forgetAll();
        decide();
    });
}

OutputPower::~OutputPower() = default;

DisplayPower::State OutputPower::state() {
    const auto knownAs = [this](bool isOn) {
        return std::ranges::any_of(
            m_outputs, [isOn](const auto& output) { return output->watch && output->watch->isOn == isOn; });
    };
    if (!m_manager) {
        return State::unknown;
    }
    if (m_outputs.empty()) { // some displays vanish when they are switched off
        return m_hasOutputs ? State::asleep : State::unknown;
    }
    if (knownAs(true)) {
        return State::on;
    }
    return knownAs(false) ? State::asleep : State::unknown;
}

void OutputPower::add(const WaylandGlobal& global) {
    if (global.interface == wl_output_interface.name) {
        m_hasOutputs = true;
        m_outputs.push_back(std::make_unique<Output>(
            Output{.global = global.name,
                   .output = BoundOutput(m_connection.bind<wl_output>(global, wl_output_interface, 1))}));
    } else if (global.interface == m_managerInterface.name && !m_manager) {
        m_manager = global.name;
        bindManager(global);
    }
}

void OutputPower::remove(std::uint32_t name) {
    std::erase_if(m_outputs, [name](const auto& output) { return output->global == name; });
    if (m_manager == name) {
        for (const auto& output : m_outputs) {
            output->watch.reset();
        }
        m_manager.reset();
        dropManager();
    }
}

void OutputPower::forgetAll() {
    m_outputs.clear();
    m_hasOutputs = false;
    if (std::exchange(m_manager, std::nullopt)) {
        dropManager();
    }
}

void OutputPower::decide() {
    for (const auto& output : m_outputs) {
        if (m_manager && !output->watch) {
            output->watch = watch(output->output.get());
        }
    }
    if (std::exchange(m_told, state()) != state()) {
        Q_EMIT changed();
    }
}

} // namespace kestu
