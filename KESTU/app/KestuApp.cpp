// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/KestuApp.h"

#include <utility>

namespace kestu {

KestuApp::KestuApp(std::unique_ptr<Repository> repository, Platform& platform, Clock clock)
    : m_repository(std::move(repository))
    , m_tracker(*m_repository, platform, std::move(clock)) {}

void KestuApp::start() {
    m_tracker.start();
}

void KestuApp::stop() {
    m_tracker.stop();
}

QString storeFailureMessage(const DatabaseError& error) {
    return QStringLiteral("記録用のデータベースを開けませんでした：") + error.description();
}

} // namespace kestu
