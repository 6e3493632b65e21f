// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/KWinWindows.h"

#include "platform/PlatformError.h"
#include "platform/linux/ProcessTree.h"
#include "platform/linux/UserFile.h"
#include "platform/linux/wayland/KWinScript.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <utility>

namespace kestu {

using namespace std::chrono_literals;

namespace {

const QString service = QStringLiteral("org.kde.KWin");
const QString filePrefix = QStringLiteral("kestu-kwin-");
const QString fileSuffix = QStringLiteral(".js");

constexpr auto untilNextTry = 250ms;

// KWin gives a number again that a running script has, when another one was unloaded: "run" meets that one
// then, and ours waits. Starting everybody's is the other way.
constexpr auto untilAllAreStarted = 1s;

// Calls wait while we do something else, but never for so long.
constexpr auto longestWay = 10s;

/// The name under which KWin knows the script.
QString pluginOf(const QString& busNumber) {
    return QStringLiteral("kestu-") + busNumber.sliced(1);
}

/// When the script called, by KWin's own clock.
Moment momentOf(double millisecondsSinceEpoch) {
    const double age = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) - millisecondsSinceEpoch;
    const bool isBelievable = age >= 0 && age <= std::chrono::milliseconds(longestWay).count();
    return Moment::clock::now() - std::chrono::milliseconds(isBelievable ? static_cast<qint64>(age) : 0);
}

/// KWin gives windows of Wayland the program's file name as their instance, which programs themselves never
/// said; X11 windows have one of their own.
QString instanceIn(const QJsonObject& window, std::int64_t processId, const QString& procRoot) {
    const QString name = believableName(window[u"name"].toString());
    const bool isFileName = processId > 0 && name == QFileInfo(executableOf(procRoot, processId)).fileName();
    return isFileName ? QString() : name;
}

ToldWindow windowIn(const QJsonObject& window, const QString& procRoot) {
    const std::int64_t processId = believableProcessId(window[u"pid"].toInteger());
    const QString windowClass = believableName(window[u"class"].toString());
    const QString entry = believableName(window[u"entry"].toString());
    return {.key = window[u"id"].toString(),
            .facts = {.wmInstance = instanceIn(window, processId, procRoot),
                      .wmClass = windowClass,
                      .gtkApplicationId = entry == windowClass ? QString() : entry,
                      .isDesktop = window[u"isDesktop"].toBool(),
                      .processId = processId},
            .title = window[u"title"].toString(),
            .at = momentOf(window[u"at"].toDouble())};
}

/// A panel of ours that is placed by the layer shell: KWin takes it for an active window, and it has no
/// desktop entry. What is beneath it stays in front.
bool isOwnPanel(const QJsonObject& window) {
    return window[u"pid"].toInteger() == QCoreApplication::applicationPid() &&
           window[u"entry"].toString().isEmpty();
}

} // namespace

KWinWindows::KWinWindows(const QDBusConnection& sessionBus, QString folder,
                         std::chrono::milliseconds patience, QString procRoot)
    : m_bus(sessionBus)
    , m_folder(std::move(folder))
    , m_procRoot(std::move(procRoot))
    , m_kwin(m_bus, service)
    , m_calls(*this) {
    connect(&m_news, &WindowNews::frontChanged, this, &WindowSource::frontChanged);
    connect(&m_news, &WindowNews::titleChanged, this, &WindowSource::titleChanged);
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, [this] { become(State::silent); });
    m_pause.setSingleShot(true);
    m_pause.setInterval(untilNextTry);
    connect(&m_pause, &QTimer::timeout, this, [this] {
        if (m_state == State::starting) {
            loadFile();
        }
    });
    m_bus.registerVirtualObject(kwinScript::path.toString(), &m_calls);
    connect(&m_kwin, &BusOwner::changed, this, &KWinWindows::follow);
    follow();
}

KWinWindows::~KWinWindows() {
    m_bus.unregisterObject(kwinScript::path.toString());
    if (m_state != State::absent) {
        // With an answer, or the message may still be here when the process ends.
        (void)callBus(m_bus, scripting(QStringLiteral("unloadScript")), {pluginOf(m_bus.baseService())},
                      QDeadlineTimer(100ms));
        QFile::remove(fileOf(m_bus.baseService()));
    }
}

Ability KWinWindows::ability() const {
    switch (m_state) {
    case State::absent:
        break;
    case State::starting:
    case State::telling:
        return {.kind = Ability::Kind::yes};
    case State::unwritten:
        return {.note = m_whyUnwritten};
    case State::refused:
        return {.note = QStringLiteral("KWin が KESTU のスクリプトを受け付けないため、記録されません。"
                                       "ログインし直してください。")};
    case State::silent:
        return {.note = QStringLiteral("KWin のスクリプトから応答がないため、記録されません。"
                                       "ログインし直してください。")};
    }
    return {};
}

void KWinWindows::request() {
    if (ability().kind != Ability::Kind::yes && m_state != State::absent) {
        load();
    }
}

void KWinWindows::follow() {
    m_news.end();
    if (m_kwin.number().isEmpty()) {
        ++m_round;
        if (m_state != State::absent) {
            QFile::remove(fileOf(m_bus.baseService())); // the script went with KWin
        }
        become(State::absent);
    } else {
        load();
    }
}

void KWinWindows::load() {
    ++m_round;
    m_pause.stop();
    m_news.begin();
    become(State::starting);
    unloadStrays();
    const QString number = m_bus.baseService();
    try {
        replaceUserFile(fileOf(number), kwinScript::source(number),
                        QStringLiteral("KWin に渡すスクリプトを書き込めないため、記録されません"));
    } catch (const PlatformError& error) {
        m_whyUnwritten = error.description() + u'。';
        become(State::unwritten);
        return;
    }
    askKWin(scripting(QStringLiteral("unloadScript")), {pluginOf(number)}, [](const auto&) {});
    loadFile();
}

/// A KWin that starts has its name before it can take scripts.
void KWinWindows::loadFile() {
    const QString number = m_bus.baseService();
    askKWin(scripting(QStringLiteral("loadScript")), {fileOf(number), pluginOf(number)},
            [this](const std::optional<QVariantList>& answer) {
                const int id = answer ? answer->value(0, -1).toInt() : -1;
                if (!answer && m_state == State::starting) {
                    m_pause.start();
                } else if (id < 0) {
                    become(State::refused);
                } else {
                    run(QStringLiteral("/Scripting/Script%1").arg(id), QStringLiteral("/%1").arg(id));
                }
            });
}

/// Of copies of KESTU that are no more; one that still runs is left alone.
void KWinWindows::unloadStrays() {
    const QDir folder(m_folder);
    for (const QString& file : folder.entryList({filePrefix + u'*' + fileSuffix}, QDir::Files)) {
        const QString number = u':' + file.sliced(filePrefix.size()).chopped(fileSuffix.size());
        if (number != m_bus.baseService() && busOwnerOf(m_bus, number).isEmpty()) {
            askKWin(scripting(QStringLiteral("unloadScript")), {pluginOf(number)}, [](const auto&) {});
            QFile::remove(folder.filePath(file));
        }
    }
}

/// Plasma 6 puts a script at the first path, Plasma 5 at the other. Only ours is run, if that works: "start"
/// starts everybody's.
void KWinWindows::run(const QString& scriptPath, const QString& otherPath) {
    askKWin({.service = m_kwin.number(),
             .path = scriptPath,
             .interface = QStringLiteral("org.kde.kwin.Script"),
             .method = QStringLiteral("run")},
            {}, [this, otherPath](const std::optional<QVariantList>& answer) {
                if (answer) {
                    checkLoaded();
                } else if (!otherPath.isEmpty()) {
                    run(otherPath, {});
                } else {
                    become(State::refused);
                }
            });
}

/// KWin takes a script that it cannot run, and drops it.
void KWinWindows::checkLoaded() {
    askKWin(scripting(QStringLiteral("isScriptLoaded")), {pluginOf(m_bus.baseService())},
            [this](const std::optional<QVariantList>& answer) {
                if (!answer || !answer->value(0).toBool()) {
                    become(State::refused);
                } else {
                    QTimer::singleShot(untilAllAreStarted, this, [this, round = m_round] {
                        if (round == m_round && m_state == State::starting) {
                            askKWin(scripting(QStringLiteral("start")), {}, [](const auto&) {});
                        }
                    });
                }
            });
}

void KWinWindows::become(State state) {
    if (state == State::starting) {
        m_patience.start();
    } else {
        m_patience.stop();
    }
    const Ability before = ability();
    m_state = state;
    if (ability() != before) {
        Q_EMIT abilityChanged();
    }
}

bool KWinWindows::Calls::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    if (message.service() != m_windows.m_kwin.number() || message.interface() != kwinScript::interface ||
        message.member() != kwinScript::method || message.signature() != u"s") {
        return false; // a stranger, and nothing that we know
    }
    m_windows.take(message.arguments().constFirst().toString());
    return m_windows.m_bus.send(message.createReply());
}

void KWinWindows::take(const QString& told) {
    const QJsonDocument document = QJsonDocument::fromJson(told.toUtf8());
    const QJsonObject window = document.object();
    const bool isWindow = !window[u"id"].toString().isEmpty();
    if (!isWindow && told != u"null") {
        return; // not of our script
    }
    become(State::telling);
    if (!isWindow) {
        m_news.take(std::nullopt);
    } else if (!isOwnPanel(window)) {
        m_news.take(windowIn(window, m_procRoot));
    }
}

BusMethod KWinWindows::scripting(const QString& method) const {
    return {.service = m_kwin.number(),
            .path = QStringLiteral("/Scripting"),
            .interface = QStringLiteral("org.kde.kwin.Scripting"),
            .method = method};
}

QString KWinWindows::fileOf(const QString& busNumber) const {
    return m_folder + u'/' + filePrefix + busNumber.sliced(1) + fileSuffix;
}

void KWinWindows::askKWin(const BusMethod& method, const QVariantList& arguments,
                          std::function<void(const std::optional<QVariantList>&)> answered) {
    tryBusLater(m_bus, method, arguments, this,
                [this, round = m_round, answered = std::move(answered)](const auto& answer) {
                    if (round == m_round) {
                        answered(answer);
                    }
                });
}

} // namespace kestu
