// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Commands.h"

#include "app/AppModel.h"
#include "ui/HelpPages.h"

#include <QMenu>

#include <utility>

namespace kestu {

Commands::Commands(AppModel& model)
    : m_model(model)
    , m_themeChoices(nullptr)
    , m_open(QStringLiteral("開く"))
    , m_checkForUpdates(QStringLiteral("アップデートを確認…"))
    , m_help(QStringLiteral("はじめかた"))
    , m_support(QStringLiteral("うまくいかないとき"))
    , m_terms(QStringLiteral("利用規約"))
    , m_quit(QStringLiteral("終了")) {
    m_help.setShortcut(QKeySequence(Qt::Key_F1));
    m_quit.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    m_newVersion.setVisible(false);
    connect(&m_toggleTracking, &QAction::triggered, &m_model, &AppModel::toggleTracking);
    connect(&m_open, &QAction::triggered, this, &Commands::open);
    connect(&m_newVersion, &QAction::triggered, this, &Commands::updateCheckRequested);
    connect(&m_checkForUpdates, &QAction::triggered, this, &Commands::updateCheckRequested);
    connect(&m_help, &QAction::triggered, this, [this] { showPage(HelpPage::start); });
    connect(&m_support, &QAction::triggered, this, [this] { showPage(HelpPage::support); });
    connect(&m_terms, &QAction::triggered, this, [this] { showPage(HelpPage::terms); });
    connect(&m_quit, &QAction::triggered, this, &Commands::quitRequested);
    addThemeChoices();
    connect(&m_model, &AppModel::themeChoiceChanged, this, &Commands::refreshThemeChoice);
    refreshThemeChoice();
    connect(&m_model, &AppModel::isTrackingChanged, this, &Commands::refreshTracking);
    refreshTracking();
}

void Commands::addThemeChoices() {
    const std::pair<ThemeChoice, QString> choices[] = {
        {ThemeChoice::system, QStringLiteral("システムに合わせる")},
        {ThemeChoice::light, QStringLiteral("ライト")},
        {ThemeChoice::dark, QStringLiteral("ダーク")},
    };
    for (const auto& [choice, text] : choices) {
        QAction* action = m_themeChoices.addAction(text);
        action->setCheckable(true);
        action->setData(static_cast<int>(choice));
        connect(action, &QAction::triggered, &m_model,
                [this, wanted = choice] { m_model.setThemeChoice(wanted); });
    }
}

void Commands::refreshThemeChoice() {
    for (QAction* action : m_themeChoices.actions()) {
        action->setChecked(action->data().toInt() == static_cast<int>(m_model.themeChoice()));
    }
}

void Commands::fillWindowMenu(QMenu& menu) {
    menu.addAction(&m_toggleTracking);
    menu.addMenu(QStringLiteral("外観"))->addActions(m_themeChoices.actions());
    menu.addSeparator();
    fillCommon(menu);
}

void Commands::fillStatusMenu(QMenu& menu) {
    menu.addAction(&m_toggleTracking);
    menu.addAction(&m_open);
    menu.addSeparator();
    fillCommon(menu);
}

void Commands::fillCommon(QMenu& menu) {
    menu.addAction(&m_newVersion);
    menu.addAction(&m_checkForUpdates);
    menu.addSeparator();
    menu.addActions({&m_help, &m_support, &m_terms});
    menu.addSeparator();
    menu.addAction(&m_quit);
}

void Commands::offerVersion(const QString& version) {
    m_newVersion.setText(QStringLiteral("バージョン %1 を入手できます").arg(version));
    m_newVersion.setVisible(true);
}

void Commands::open() {
    m_model.goToToday();
    Q_EMIT openRequested();
}

void Commands::refreshTracking() {
    m_toggleTracking.setText(trackingCommandText(m_model.isTracking()));
}

void Commands::showPage(HelpPage page) {
    m_model.openPage(fileOf(page));
}

QString trackingCommandText(bool isTracking) {
    return isTracking ? QStringLiteral("一時停止") : QStringLiteral("記録を再開");
}

} // namespace kestu
