// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop of a Wayland session: what the best of the sources says is in front. A source may come and go
// while we run; the others wait. WaylandSession owns one.
#pragma once

#include "platform/Workspace.h"
#include "platform/linux/ApplicationResolver.h"
#include "platform/linux/wayland/WindowSource.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kestu {

class WaylandDesktop final : public QObject, public Workspace {
    Q_OBJECT

public:
    /// The sources in the order of preference; `isHeld` as in DesktopSession.
    WaylandDesktop(std::vector<std::unique_ptr<WindowSource>> sources, std::function<bool()> isHeld,
                   ApplicationIds::EntrySource entries = installedDesktopEntries);

    [[nodiscard]] QString whyUnseen() override;
    [[nodiscard]] std::optional<FrontmostApplication> frontmostApplication() override;
    [[nodiscard]] QString focusedWindowTitle(std::int64_t processId) override;

    /// The one that is asked now; null when none can tell.
    [[nodiscard]] WindowSource* source() const { return m_source; }

    /// What can be told now, by whomever; else what the first source that knows a way says would help.
    [[nodiscard]] Ability windows() const;
    [[nodiscard]] Ability titles() const;

    /// Asks every source that cannot tell to do what it may.
    void request();

Q_SIGNALS:
    void activated();
    void titleChanged();
    void abilitiesChanged();

private:
    void choose();

    std::vector<std::unique_ptr<WindowSource>> m_sources;
    std::function<bool()> m_isHeld;
    ApplicationIds m_ids;
    WindowSource* m_source = nullptr;
    std::optional<SeenWindow> m_front; // as of the last frontmostApplication()
};

} // namespace kestu
