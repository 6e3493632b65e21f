// SPDX-License-Identifier: GPL-3.0-or-later
//
// The bus on which programs describe their windows to assistive technology, and the desktop's switch that
// makes programs join it. The bus is opened with the first question, and again when it went away. Owned by
// the Linux platform.
#pragma once

#include "platform/linux/AccessibleProtocol.h"
#include "platform/linux/BusQuestions.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace kestu {

/// A program on the accessibility bus.
struct AccessibleProgram {
    Accessible root;
    std::int64_t processId = 0; // 0 when it has just left
};

class AccessibilityBus final {
public:
    /// `events` are announced to us by all programs as long as the bus is open (AccessibleProtocol.h).
    explicit AccessibilityBus(const QDBusConnection& session,
                              QStringList events = {accessible::windowActivation});
    ~AccessibilityBus();
    AccessibilityBus(const AccessibilityBus&) = delete;
    AccessibilityBus& operator=(const AccessibilityBus&) = delete;

    /// Whether programs are told to join the bus; false also when that cannot be known within 0.3 seconds.
    [[nodiscard]] bool isEnabled();

    /// Whether there is such a bus in this session, or one that starts when it is asked for. Within 0.3
    /// seconds; what cannot be known counts as no.
    [[nodiscard]] bool isOffered();

    /// Tells programs to join, for the whole session of the user and for later ones. False when refused.
    bool enable();

    /// The root of the program with this process id; absent while it is not on the bus. Throws NoAnswer,
    /// also when there is no accessibility bus.
    [[nodiscard]] std::optional<Accessible> program(std::int64_t processId, const QDeadlineTimer& deadline);

    /// All programs. Throws as `program`.
    [[nodiscard]] QList<AccessibleProgram> programs(const QDeadlineTimer& deadline);

    /// The programs' replies, as BusQuestions::askAll. Throws NoAnswer, also when there is no bus.
    [[nodiscard]] QList<QDBusMessage> askAll(const QList<QDBusMessage>& questions,
                                             const QDeadlineTimer& deadline);
    [[nodiscard]] QDBusMessage ask(const QDBusMessage& question, const QDeadlineTimer& deadline);

    /// For whoever listens; absent while the bus is not open.
    [[nodiscard]] std::optional<QDBusConnection> connection() const;

    /// Leaves the bus, and nothing is announced to us any more. The next question opens it again.
    void close();

private:
    void open(const QDeadlineTimer& deadline);
    [[nodiscard]] bool listen(const QDeadlineTimer& deadline);

    BusQuestions m_session;
    QStringList m_events;
    std::optional<BusQuestions> m_bus; // while open
    QString m_connectionName;          // Qt's name for our connection, while open
    QString m_listeningRegistry;       // the registry that knows that we listen
};

} // namespace kestu
