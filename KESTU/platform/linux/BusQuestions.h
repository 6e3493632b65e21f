// SPDX-License-Identifier: GPL-3.0-or-later
//
// Questions to programs that may hang. Several questions travel together and wait together, without the
// event loop, so that no second tick can begin inside a first one. A program that let one pass is not asked
// again until it has answered: a browser that is stopped costs one wait, however often its windows change.
// Owned by whoever owns the connection.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDeadlineTimer>
#include <QList>
#include <QString>

#include <exception>
#include <map>

namespace kestu {

/// A program did not answer in time, or still owes the answer to an earlier question.
struct NoAnswer final : std::exception {
    [[nodiscard]] const char* what() const noexcept override { return "no answer on the bus"; }
};

class BusQuestions final {
public:
    explicit BusQuestions(QDBusConnection bus);
    BusQuestions(const BusQuestions&) = delete;
    BusQuestions& operator=(const BusQuestions&) = delete;

    [[nodiscard]] bool isConnected() const { return m_bus.isConnected(); }

    /// The replies in the order of the questions; an error is a reply too. Throws NoAnswer after 0.3 seconds
    /// or at `deadline`, whichever comes first.
    [[nodiscard]] QList<QDBusMessage> askAll(const QList<QDBusMessage>& questions,
                                             const QDeadlineTimer& deadline);

    /// As askAll, with one question.
    [[nodiscard]] QDBusMessage ask(const QDBusMessage& question, const QDeadlineTimer& deadline);

private:
    [[nodiscard]] bool owesAnAnswer(const QString& service);

    QDBusConnection m_bus;
    // By service. An entry ends with the answer or with the program: never more than there are hung programs.
    std::map<QString, QDBusPendingCall> m_owed;
};

} // namespace kestu
