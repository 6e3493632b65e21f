// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which source of windows is asked, and what is said while the best cannot tell.
#include "platform/linux/wayland/WaylandDesktop.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using Kind = Ability::Kind;

struct Source final : WindowSource {
    Ability able;
    bool isNeeded = false;
    int requests = 0;

    [[nodiscard]] QString name() const override { return u"test"_s; }
    [[nodiscard]] Ability ability() const override { return able; }
    [[nodiscard]] std::optional<SeenWindow> front() override {
        return SeenWindow{.facts = {.processId = getpid()}, .title = able.note};
    }
    void setNeeded(bool needed) override { isNeeded = needed; }
    void request() override { ++requests; }

    void become(const Ability& ability) {
        able = ability;
        Q_EMIT abilityChanged();
    }
};

TEST(SourceChoiceTest, IsTheFirstThatCanTellAndTheOthersRest) {
    auto owned = std::vector<std::unique_ptr<WindowSource>>();
    Source* sources[2];
    for (Source*& source : sources) {
        source = new Source;
        owned.emplace_back(source);
    }
    WaylandDesktop desktop(
        std::move(owned), [] { return false; }, [] { return std::vector<DesktopEntry>(); });
    auto& [best, last] = sources;
    const Ability partly{.kind = Kind::partly, .note = u"一部。"_s};
    const Ability off{.kind = Kind::no, .note = u"オフ。"_s, .mayBeRequested = true};
    const struct {
        Ability best;
        Ability last;
        const Source* told;
        bool isLastNeeded;
        Ability windows;
        QString whyUnseen; // begins with this
    } rows[] = {
        {{}, {}, nullptr, true, {}, u"このデスクトップは"_s},
        {off, {}, nullptr, true, off, u"オフ。"_s},
        {off,
         partly,
         last,
         true,
         {.kind = Kind::partly, .note = u"オフ。それまでは、一部。"_s, .mayBeRequested = true},
         {}},
        {{}, partly, last, true, partly, {}},
        {{.kind = Kind::yes}, partly, best, false, {.kind = Kind::yes}, {}},
        {{.kind = Kind::afterLogin, .note = u"次から。"_s},
         {},
         nullptr,
         true,
         {.kind = Kind::afterLogin, .note = u"次から。"_s},
         u"次から。"_s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE((row.best.note + u'/' + row.last.note).toStdString());
        last->become(row.last);
        best->become(row.best);
        EXPECT_EQ(desktop.source(), row.told);
        EXPECT_TRUE(best->isNeeded);
        EXPECT_EQ(last->isNeeded, row.isLastNeeded);
        EXPECT_EQ(desktop.windows(), row.windows);
        EXPECT_EQ(desktop.whyUnseen().isEmpty(), row.whyUnseen.isEmpty());
        EXPECT_TRUE(desktop.whyUnseen().startsWith(row.whyUnseen));
        EXPECT_EQ(desktop.frontmostApplication().has_value(), row.told != nullptr);
    }
    best->become({.kind = Kind::yes});
    desktop.request();
    EXPECT_EQ(best->requests, 0);
    EXPECT_EQ(last->requests, 1);
}

} // namespace
} // namespace kestu
