// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window in front as KWin knows it (Plasma 5.27 and 6), told by a script of ours that KWin runs. KWin
// keeps a script when we crash: then its calls go nowhere, and the next start of KESTU unloads it. The file
// of the script, which bears our number on the bus, is the record of that. WaylandDesktop owns one.
#pragma once

#include "platform/linux/Bus.h"
#include "platform/linux/wayland/BusOwner.h"
#include "platform/linux/wayland/WindowNews.h"
#include "platform/linux/wayland/WindowSource.h"

#include <QDBusVirtualObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>

namespace kestu {

class KWinWindows final : public WindowSource {
    Q_OBJECT

public:
    /// `folder` is the user's own and gone with his session; the script's file lies there. `patience` is for
    /// a script that should call and does not yet. Takes 0.3 seconds at most.
    KWinWindows(const QDBusConnection& sessionBus, QString folder,
                std::chrono::milliseconds patience = std::chrono::seconds(10),
                QString procRoot = QStringLiteral("/proc"));
    ~KWinWindows() override;

    [[nodiscard]] QString name() const override { return QStringLiteral("KWin"); }
    [[nodiscard]] Ability ability() const override;
    [[nodiscard]] std::optional<SeenWindow> front() override { return m_news.front(); }

    /// Has KWin load the script again where it did not work.
    void request() override;

private:
    enum class State {
        absent,   // no KWin
        starting, // asked, and not refused so far
        telling,
        unwritten, // there is no place for the script's file
        refused,   // by KWin
        silent     // it said yes and does not call
    };

    class Calls final : public QDBusVirtualObject {
    public:
        explicit Calls(KWinWindows& windows)
            : m_windows(windows) {}
        [[nodiscard]] QString introspect(const QString&) const override { return {}; }
        bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

    private:
        KWinWindows& m_windows;
    };

    void follow();
    void load();
    void loadFile();
    void unloadStrays();
    void run(const QString& scriptPath, const QString& otherPath);
    void checkLoaded();
    void become(State state);
    void take(const QString& told);
    [[nodiscard]] BusMethod scripting(const QString& method) const;
    [[nodiscard]] QString fileOf(const QString& busNumber) const;
    void askKWin(const BusMethod& method, const QVariantList& arguments,
                 std::function<void(const std::optional<QVariantList>&)> answered);

    QDBusConnection m_bus;
    QString m_folder;
    QString m_procRoot;
    BusOwner m_kwin;
    WindowNews m_news;
    Calls m_calls;
    State m_state = State::absent;
    QString m_whyUnwritten;
    int m_round = 0; // of loading; answers of earlier ones mean nothing
    QTimer m_patience;
    QTimer m_pause; // until a KWin that could not take the script is asked again
};

} // namespace kestu
