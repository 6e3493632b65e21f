// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/KestuApp.h"

#include <utility>

namespace kestu {

KestuApp::KestuApp(std::unique_ptr<Repository> repository, Platform& platform,
                   AppModel::Environment environment)
    : m_model(std::move(repository), platform, std::move(environment)) {}

void KestuApp::start() {
    m_model.loadSettings();
    m_model.start();
}

void KestuApp::stop() {
    m_model.stop();
}

QString storeFailureMessage(const DatabaseError& error) {
    return QStringLiteral("記録用のデータベースを開けませんでした：") + error.description();
}

} // namespace kestu
