// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window in front as GNOME Shell's extension of ours tells it (packaging/gnome-extension). Believed only
// when it is the shell that tells. WaylandDesktop owns one.
#pragma once

#include "platform/linux/wayland/BusOwner.h"
#include "platform/linux/wayland/GnomeExtension.h"
#include "platform/linux/wayland/WindowNews.h"
#include "platform/linux/wayland/WindowSource.h"

#include <QDBusMessage>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

namespace kestu {

class GnomeWindows final : public WindowSource {
    Q_OBJECT

public:
    /// The first arguments are GnomeExtension's. `patience` is for an extension that should tell and does not
    /// yet. Takes 0.4 seconds at most.
    GnomeWindows(const QDBusConnection& sessionBus, std::unique_ptr<GnomeShellSettings> settings,
                 QStringList extensionFolders, std::chrono::milliseconds patience = std::chrono::seconds(3));

    [[nodiscard]] QString name() const override { return QStringLiteral("GNOME Shell"); }
    [[nodiscard]] Ability ability() const override;
    [[nodiscard]] std::optional<SeenWindow> front() override { return m_news.front(); }
    void request() override { m_extension.request(); }

private Q_SLOTS:
    void onChanged(const QDBusMessage& message);

private:
    enum class State {
        waiting, // for the extension
        telling,
        foreign, // the shell runs another version of the extension
        late     // it should be there by now
    };

    void follow();
    void askForWindow();
    void become(State state);
    void noteAbility();
    void take(const QVariant& told);

    QDBusConnection m_bus;
    GnomeExtension m_extension;
    BusOwner m_owner; // of the extension's name
    WindowNews m_news;
    State m_state = State::waiting;
    QTimer m_patience;
    Ability m_told; // the last one that was told
};

} // namespace kestu
