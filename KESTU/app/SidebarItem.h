// SPDX-License-Identifier: GPL-3.0-or-later
//
// The screens of the main window, in the order of the sidebar.
#pragma once

#include <QStringView>

#include <array>

namespace kestu {

enum class SidebarItem { timeline, report, projects, settings };

struct SidebarEntry {
    SidebarItem item;
    QStringView raw;
    QStringView label;
    QStringView icon;
};

inline constexpr std::array<SidebarEntry, 4> sidebarEntries{{
    {SidebarItem::timeline, u"timeline", u"タイムライン", u"calendar.day.timeline.left"},
    {SidebarItem::report, u"report", u"レポート", u"chart.bar.xaxis"},
    {SidebarItem::projects, u"projects", u"分類とルール", u"folder"},
    {SidebarItem::settings, u"settings", u"設定", u"gearshape"},
}};

/// The item with this raw value, exactly; the timeline for any other text.
[[nodiscard]] constexpr SidebarItem sidebarItemFromRaw(QStringView raw) {
    for (const SidebarEntry& entry : sidebarEntries) {
        if (entry.raw == raw) {
            return entry.item;
        }
    }
    return SidebarItem::timeline;
}

} // namespace kestu
