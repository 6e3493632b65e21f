// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/DisplayPowers.h"
#include "platform/linux/wayland/KWinDpms.h"
#include "platform/linux/wayland/WlrOutputPower.h"

#include "platform/linux/wayland/Compositor.h"

#include <QSignalSpy>

#include <kde-dpms-server.h>
#include <wlr-output-power-management-server.h>

namespace kestu {
namespace {

using test::waitUntil;
using State = DisplayPower::State;

class OutputPowerTest : public CompositorTest,
                        public testing::WithParamInterface<test::FakeCompositor::Kind> {
protected:
    OutputPowerTest() {
        std::vector<std::unique_ptr<DisplayPower>> powers;
        powers.push_back(std::make_unique<WlrOutputPower>(m_connection));
        powers.push_back(std::make_unique<KWinDpms>(m_connection));
        m_power = std::make_unique<DisplayPowers>(std::move(powers));
        QObject::connect(m_power.get(), &DisplayPower::changed, [this] { m_told = m_power->state(); });
    }

    [[nodiscard]] static bool isWlr() { return GetParam() == Fake::wlrPower; }

    static void turn(Fake& fake, int output, bool isOn) {
        if (isWlr()) {
            fake.tell(Fake::wlrOutput, output, zwlr_output_power_v1_send_mode,
                      isOn ? ZWLR_OUTPUT_POWER_V1_MODE_ON : ZWLR_OUTPUT_POWER_V1_MODE_OFF);
        } else {
            fake.tell(Fake::kdeOutput, output, org_kde_kwin_dpms_send_mode,
                      isOn ? ORG_KDE_KWIN_DPMS_MODE_ON : ORG_KDE_KWIN_DPMS_MODE_OFF);
            fake.tell(Fake::kdeOutput, output, org_kde_kwin_dpms_send_done);
        }
    }

    /// It cannot say any more whether the output is on.
    static void fail(Fake& fake, int output) {
        if (isWlr()) {
            fake.tell(Fake::wlrOutput, output, zwlr_output_power_v1_send_failed);
        } else {
            fake.tell(Fake::kdeOutput, output, org_kde_kwin_dpms_send_supported, 0);
            fake.tell(Fake::kdeOutput, output, org_kde_kwin_dpms_send_done);
        }
    }

    bool becomes(State state) {
        return waitUntil([&] { return m_told == state && m_power->state() == state; }, 5000);
    }

    std::unique_ptr<DisplayPowers> m_power; // ends before the connection
    State m_told = State::unknown;
};

TEST_P(OutputPowerTest, SleepsWhenAllOutputsAreOff) {
    start({{Fake::output, 1}, {GetParam(), 1}, {Fake::output, 1}});
    m_connection.open();
    EXPECT_EQ(m_power->state(), State::on) << "known when it is open";
    does([](Fake& fake) { turn(fake, 0, false); });
    EXPECT_EQ(m_told, State::on);
    does([](Fake& fake) { turn(fake, 1, false); });
    EXPECT_EQ(m_told, State::asleep);

    does([](Fake& fake) { fake.add(Fake::output); });
    EXPECT_TRUE(becomes(State::on)) << "plugged in";
    does([](Fake& fake) { fake.remove(Fake::output, 2); });
    EXPECT_TRUE(becomes(State::asleep)) << "and out";
    does([](Fake& fake) { turn(fake, 0, true); });
    EXPECT_TRUE(becomes(State::on));
    does([](Fake& fake) { fail(fake, 0); });
    EXPECT_TRUE(becomes(State::asleep)) << "the other is off";
    does([](Fake& fake) { fail(fake, 1); });
    EXPECT_TRUE(becomes(State::unknown));

    does([](Fake& fake) {
        fake.remove(Fake::output, 0);
        fake.remove(Fake::output, 1);
    });
    EXPECT_TRUE(becomes(State::asleep)) << "none is left";
    does([](Fake& fake) { fake.remove(GetParam()); });
    EXPECT_TRUE(becomes(State::unknown));
    does([](Fake& fake) {
        fake.add(Fake::output);
        fake.add(GetParam());
    });
    EXPECT_TRUE(becomes(State::on));
    m_compositor.reset();
    EXPECT_TRUE(becomes(State::unknown));
}

INSTANTIATE_TEST_SUITE_P(Both, OutputPowerTest,
                         testing::Values(test::FakeCompositor::wlrPower, test::FakeCompositor::kdePower));

} // namespace
} // namespace kestu
