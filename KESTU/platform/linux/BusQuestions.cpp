// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/BusQuestions.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kestu {

namespace {

// Milliseconds that a program may think: what a window's title may cost as well.
constexpr qint64 patience = 300;
constexpr int forever = std::numeric_limits<int>::max();

} // namespace

BusQuestions::BusQuestions(QDBusConnection bus)
    : m_bus(std::move(bus)) {}

QList<QDBusMessage> BusQuestions::askAll(const QList<QDBusMessage>& questions,
                                         const QDeadlineTimer& deadline) {
    const auto owes = [this](const QDBusMessage& question) { return owesAnAnswer(question.service()); };
    if (deadline.hasExpired() || std::any_of(questions.begin(), questions.end(), owes)) {
        throw NoAnswer();
    }
    const int milliseconds = static_cast<int>(std::clamp<qint64>(deadline.remainingTime(), 1, patience));
    QList<QDBusPendingCall> calls;
    for (const QDBusMessage& question : questions) {
        calls << m_bus.asyncCall(question, milliseconds);
    }
    QList<QDBusMessage> replies;
    for (QDBusPendingCall& call : calls) {
        call.waitForFinished();
        if (call.error().type() == QDBusError::NoReply) {
            // Qt forgets a question whose time is over. The same one, asked without an end, tells later that
            // the program has come back: its answer, or the error when the program is gone.
            const QDBusMessage& question = questions.at(replies.size());
            m_owed.insert_or_assign(question.service(), m_bus.asyncCall(question, forever));
            throw NoAnswer();
        }
        replies << call.reply();
    }
    return replies;
}

QDBusMessage BusQuestions::ask(const QDBusMessage& question, const QDeadlineTimer& deadline) {
    return askAll({question}, deadline).first();
}

bool BusQuestions::owesAnAnswer(const QString& service) {
    std::erase_if(m_owed, [](const auto& owed) { return owed.second.isFinished(); });
    return m_owed.contains(service);
}

} // namespace kestu
