// SPDX-License-Identifier: GPL-3.0-or-later
//
// A connection of ours to a compositor of the test's.
#pragma once

#include "platform/linux/wayland/WaylandConnection.h"

#include "support/FakeCompositor.h"
#include "support/PrivateBus.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace kestu {

class CompositorTest : public testing::Test {
protected:
    using Fake = test::FakeCompositor;

    void start(const Fake::Offer& offer) { m_compositor = std::make_unique<Fake>(m_socket, offer); }

    /// Its actions are sent and taken when this returns.
    void does(const std::function<void(Fake&)>& action) {
        m_compositor->does(action);
        m_connection.read();
    }

    /// How many objects of this kind we have there.
    int count(Fake::Kind kind) {
        int count = 0;
        m_compositor->does([&](Fake& fake) { count = fake.count(kind); });
        return count;
    }

    bool awaitCount(Fake::Kind kind, int wanted) {
        return test::waitUntil([&] { return count(kind) == wanted; }, 5000);
    }

    QTemporaryDir m_folder;
    QString m_socket = m_folder.filePath(QStringLiteral("wayland-test"));
    std::unique_ptr<Fake> m_compositor;
    WaylandConnection m_connection{m_socket};
};

} // namespace kestu
