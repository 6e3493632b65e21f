// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which of our windows is in front on Wayland, where windows have no role.
#include "base/WindowRole.h"
#include "platform/linux/wayland/WaylandDesktop.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

class OneWindow final : public WindowSource {
public:
    explicit OneWindow(const SeenWindow& window)
        : m_window(window) {}

    [[nodiscard]] QString name() const override { return u"one"_s; }
    [[nodiscard]] Ability ability() const override { return {.kind = Ability::Kind::yes}; }
    [[nodiscard]] std::optional<SeenWindow> front() override { return m_window; }

private:
    SeenWindow m_window;
};

TEST(OwnPanel, IsKnownByItsTitleAndOnlyAsOurs) {
    const qint64 we = QCoreApplication::applicationPid();
    const QString panel = statusItemTitle.toString();
    const struct {
        qint64 processId;
        QString appId;
        QString title;
        bool isOwnPanel;
    } rows[] = {
        {we, u"kestu"_s, panel, true},
        {we, u"kestu"_s, u"タイムライン — KESTU"_s, false}, // the main window is recorded
        {we, u"kestu"_s, u"KESTU"_s, false},
        {0, u"kestu"_s, panel, true}, // where no pid is told
        {0, u"jp.example.memo"_s, panel, false},
        {1, u"kestu"_s, panel, false}, // another program that says so
    };
    for (const auto& row : rows) {
        std::vector<std::unique_ptr<WindowSource>> sources;
        sources.push_back(std::make_unique<OneWindow>(
            SeenWindow{.facts = {.wmClass = row.appId, .processId = row.processId}, .title = row.title}));
        WaylandDesktop desktop(std::move(sources), [] { return false; });
        const auto front = desktop.frontmostApplication();
        ASSERT_TRUE(front) << row.title.toStdString();
        EXPECT_EQ(front->isOwnPanel, row.isOwnPanel) << row.processId << row.title.toStdString();
    }
}

} // namespace
} // namespace kestu
