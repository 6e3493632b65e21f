// SPDX-License-Identifier: GPL-3.0-or-later
//
// How it stands with our extension of GNOME Shell, which alone can tell of the windows there, and what would
// help. GnomeWindows owns one.
#pragma once

#include "platform/Abilities.h"
#include "platform/linux/Bus.h"
#include "platform/linux/wayland/BusOwner.h"
#include "platform/linux/wayland/GnomeShellSettings.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

namespace kestu {

class GnomeExtension final : public QObject {
    Q_OBJECT

public:
    enum class State {
        noShell,      // no GNOME Shell here
        notInstalled, // nowhere on this machine
        notKnown,     // installed since the shell started, which looks only once
        afterLogin,   // the same, and switched on
        off,          // known to the shell, never switched on
        offByUser,    // switched off by the user
        allOff,       // the user lets no extension run
        outdated,     // not made for this shell
        failed,       // the shell could not run it
        starting,     // switched on, and should run at any moment; or the shell has not said anything yet
        resting,      // switched on; while the screen is locked no extension runs
        active
    };

    /// `folders` are those in which the shell looks for extensions. Asks the shell, which takes 0.2 seconds
    /// at most.
    GnomeExtension(const QDBusConnection& sessionBus, std::unique_ptr<GnomeShellSettings> settings,
                   QStringList folders);

    /// GNOME Shell's number on the bus; empty when there is none.
    [[nodiscard]] const QString& shell() const { return m_shell.number(); }

    [[nodiscard]] State state() const;

    /// Whether windows can be told, by this state, and what would help.
    [[nodiscard]] Ability ability() const;

    /// Switches the extension on, which the user has asked for.
    void request();

Q_SIGNALS:
    void changed(); // the state, perhaps

private Q_SLOTS:
    void onStateChanged(const QDBusMessage& message);
    void onLockChanged(const QDBusMessage& message);
    void onPropertiesChanged(const QDBusMessage& message);

private:
    struct Question {
        BusMethod method;
        QVariantList arguments;
        void (GnomeExtension::*take)(const QVariantList&);
    };

    void listen(const QString& path, const QString& interface, const QString& signal, const char* slot);
    [[nodiscard]] std::vector<Question> questions() const;
    void askNow();
    void askLater();
    void takeInfo(const QVariantList& answer);
    void takeLock(const QVariantList& answer);
    void takeVersion(const QVariantList& answer);
    [[nodiscard]] State stateOfUnknown() const;
    [[nodiscard]] bool isSwitchedOn() const;
    [[nodiscard]] BusMethod ofShell(const QString& path, const QString& interface,
                                    const QString& method) const;

    QDBusConnection m_bus;
    std::unique_ptr<GnomeShellSettings> m_settings;
    QStringList m_folders;
    BusOwner m_shell;
    // Of the extension, as the shell knows it; empty when it does not, and absent until it has said.
    std::optional<QVariantMap> m_info;
    QString m_shellVersion;
    bool m_isLocked = false;
};

} // namespace kestu
