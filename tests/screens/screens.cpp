// SPDX-License-Identifier: GPL-3.0-or-later
//
// Renders every finished screen, sheet and panel with the sample day to PNG files, light and dark; on a
// scaled display (QT_SCALE_FACTOR) a few of each kind.
//
// usage: kestu_screens FOLDER
#include "app/AppModel.h"
#include "screens/gallery.h"
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "support/TemporaryStore.h"
#include "ui/Commands.h"
#include "ui/MainWindow.h"
#include "ui/MenuBarView.h"
#include "ui/theme/KestuStyle.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize sizes[] = {{640, 400}, {900, 560}, {1100, 720}};
constexpr QSize large{1920, 1200};
constexpr QSize tall{1100, 1400};
constexpr QSize narrowAndTall{640, 1800};

void save(QWidget& widget, const QDir& folder, const QString& name) {
    widget.show();
    QApplication::processEvents();
    const QString path = folder.filePath(name + u".png"_s);
    if (!widget.grab().save(path)) {
        throw std::runtime_error("cannot write " + path.toStdString());
    }
}

QAbstractButton* shownButton(const QWidget& window, const QString& text) {
    for (auto* button : window.findChildren<QAbstractButton*>()) {
        if (button->isVisible() && (button->text() == text || button->accessibleName() == text)) {
            return button;
        }
    }
    return nullptr;
}

/// Presses the shown button of this text, in a small window also one of the drawer.
void press(const QWidget& window, const QString& text) {
    QAbstractButton* drawer = shownButton(window, u"詳細を開く"_s);
    if (drawer && !shownButton(window, text)) {
        drawer->click();
    }
    QAbstractButton* button = shownButton(window, text);
    if (!button) {
        throw std::runtime_error("there is no button " + text.toStdString());
    }
    button->click();
}

class Studio final {
public:
    Studio(const QDir& folder, QString theme)
        : m_folder(folder)
        , m_theme(std::move(theme)) {
        m_store.now = test::sampleNow;
        test::fillSampleDay(*m_store.repository);
        test::fillSampleWeek(*m_store.repository);
        m_platform.fakeSettings.booleans[u"welcomeShown"_s] = true;
        m_platform.fakeSettings.dictionaries[u"excludedApps"_s] = {
            {u"org.keepassxc.KeePassXC"_s, u"KeePassXC"_s}, {u"org.signal.Signal"_s, u"Signal"_s}};
        m_platform.fakeAccessibility.granted = true;
        m_platform.fakeWorkspace.front = {
            .bundleId = u"jp.example.メール"_s, .localizedName = u"メール"_s, .processId = 1};
        m_platform.fakeWorkspace.title = u"作成：11月分の作業報告（A社） — 下書きを保存しました"_s;
    }

    void renderAll() {
        AppModel model(std::move(m_store.repository), m_platform,
                       {.clock = [] { return test::sampleNow; },
                        .calendar = test::tokyo,
                        .screen = {},
                        .assistantServer = u"/usr/bin/kestu-mcp"_s});
        model.loadSettings();
        model.start();
        Commands commands(model);
        if (qApp->devicePixelRatio() == 1) {
            renderUnscaled(model, commands);
        } else {
            renderSome(model, commands);
        }
    }

private:
    void renderUnscaled(AppModel& model, Commands& commands) {
        renderTimeline(model, commands);
        renderScreens(model, commands);
        render(std::make_unique<MenuBarView>(model, commands), u"panel"_s);
        renderStates(model, commands);
    }

    void renderSome(AppModel& model, Commands& commands) {
        selectNotes(model);
        for (const SidebarEntry& entry : sidebarEntries) {
            model.setScreen(entry.item);
            renderWindow(model, commands, entry.raw.toString(), sizes[0]);
            renderWindow(model, commands, entry.raw.toString(), sizes[1]);
        }
        model.setScreen(SidebarItem::timeline);
        renderPressed(model, commands, u"sheet-rule"_s, {u"振り分ける…"_s}, sizes[0]);
        render(std::make_unique<MenuBarView>(model, commands), u"panel"_s);
    }

    static void selectNotes(AppModel& model) {
        const auto& items = model.dayItems();
        const auto notes = std::find_if(items.begin(), items.end(), [](const ResolvedActivity& item) {
            return item.activity.title == QString::fromUtf16(test::sample::meetingNotes);
        });
        model.setSelectedActivityId(notes->activity.id);
    }

    void renderTimeline(AppModel& model, Commands& commands) {
        selectNotes(model);
        renderWindow(model, commands, u"timeline"_s);
        renderPressed(model, commands, u"timeline-drawer"_s, {u"詳細を開く"_s}, sizes[0]);
        renderWindow(model, commands, u"timeline"_s, large);
        renderPressed(model, commands, u"sheet-rule"_s, {u"振り分ける…"_s});
        renderPressed(model, commands, u"sheet-note"_s, {u"編集"_s});
        model.setSelectedActivityId(std::nullopt);
        model.shiftDay(-1);
        renderWindow(model, commands, u"timeline-empty"_s);
        model.goToToday();
    }

    void renderScreens(AppModel& model, Commands& commands) {
        for (const SidebarEntry& entry : sidebarEntries) {
            if (entry.item != SidebarItem::timeline) {
                model.setScreen(entry.item);
                renderWindow(model, commands, entry.raw.toString());
                renderWindow(model, commands, entry.raw.toString(), tall);
                renderWindow(model, commands, entry.raw.toString(), narrowAndTall);
            }
        }
        model.setScreen(SidebarItem::report);
        renderPressed(model, commands, u"report-week-before"_s, {u"前の週"_s});
        renderPressed(model, commands, u"report-month"_s, {u"月"_s});
        model.setScreen(SidebarItem::projects);
        renderPressed(model, commands, u"projects-tags"_s, {u"タグ"_s});
        renderPressed(model, commands, u"projects-delete"_s, {u"削除"_s});
        model.setScreen(SidebarItem::timeline);
    }

    void renderStates(AppModel& model, Commands& commands) {
        model.setErrorMessage(u"終了は開始より後にしてください"_s);
        renderWindow(model, commands, u"error"_s);
        model.clearErrorMessage();
        model.setManualDraft(ManualDraft{.start = test::sampleTime(10, 24),
                                         .end = test::sampleTime(10, 38),
                                         .editingId = {},
                                         .title = {},
                                         .projectId = 1,
                                         .tagIds = {1, 3}});
        renderWindow(model, commands, u"sheet-manual"_s);
        model.setManualDraft(std::nullopt);
        renderSessions(model, commands);
        m_platform.fakeSettings.booleans[u"welcomeShown"_s] = false;
        renderWindow(model, commands, u"welcome"_s);
        m_platform.fakeWorkspace.unseen = beforePermission().windows.note;
        m_platform.fakeAccessibility.become(beforePermission());
        renderWindow(model, commands, u"welcome-permission"_s);
        m_platform.fakeWorkspace.unseen.clear();
        m_platform.fakeAccessibility.become(m_seen);
        model.toggleTracking();
        model.shiftDay(-1);
        render(std::make_unique<MenuBarView>(model, commands), u"panel-paused"_s);
    }

    /// What is said where not all windows can be seen: the banner, the settings, the panel.
    void renderSessions(AppModel& model, Commands& commands) {
        Abilities afterLogin;
        afterLogin.windows = afterLogin.titles = {
            .kind = Ability::Kind::afterLogin,
            .note = u"一度ログアウトして、ログインし直してください。それまでは何も記録されません。"_s};
        afterLogin.lock.kind = Ability::Kind::yes;
        Abilities partly = m_seen;
        partly.source = u"アクセシビリティ"_s;
        partly.windows = partly.titles = {
            .kind = Ability::Kind::partly,
            .note = u"自分のウィンドウをアクセシビリティに知らせないプログラム（一部のターミナル、ゲーム、"
                    "動画プレーヤーなど）は記録されません。「許可する」を押すと、ブラウザや Qt のプログラムも"
                    "記録されるようになります。"_s,
            .mayBeRequested = true};
        partly.addresses = {.kind = Ability::Kind::no,
                            .note = u"「許可する」を押すと、読み取れるようになります。"_s,
                            .mayBeRequested = true};
        Abilities unseen;
        unseen.windows.note = u"このデスクトップは手前のウィンドウを知らせないため、記録されません。"_s;
        unseen.lock.kind = Ability::Kind::partly;
        for (const auto& [name, abilities] :
             {std::pair(u"permission"_s, beforePermission()), std::pair(u"after-login"_s, afterLogin),
              std::pair(u"partial"_s, partly), std::pair(u"unseen"_s, unseen)}) {
            renderSession(model, commands, name, abilities);
        }
        m_platform.fakeWorkspace.unseen.clear();
        m_platform.fakeAccessibility.become(m_seen);
    }

    void renderSession(AppModel& model, Commands& commands, const QString& name, const Abilities& abilities) {
        const auto former = m_platform.fakeWorkspace;
        if (abilities.windows.kind != Ability::Kind::partly) {
            m_platform.fakeWorkspace.front.reset();
            m_platform.fakeWorkspace.unseen = abilities.windows.note;
        }
        m_platform.fakeAccessibility.become(abilities);
        model.stop();
        model.start();
        renderWindow(model, commands, name);
        render(std::make_unique<MenuBarView>(model, commands), u"panel-"_s + name);
        model.setScreen(SidebarItem::settings);
        renderWindow(model, commands, u"settings-"_s + name, tall);
        renderWindow(model, commands, u"settings-"_s + name, narrowAndTall);
        model.setScreen(SidebarItem::timeline);
        m_platform.fakeWorkspace = former;
        model.stop();
        model.start();
    }

    static Abilities beforePermission() {
        Abilities abilities;
        abilities.windows = abilities.titles = {
            .kind = Ability::Kind::no,
            .note = u"「許可する」を押すと、KESTU の GNOME 拡張機能がオンになり、記録が始まります。"_s,
            .mayBeRequested = true};
        abilities.addresses.note = u"ウィンドウがわからないあいだは、ページの URL も記録できません。"_s;
        abilities.idle.kind = abilities.lock.kind = Ability::Kind::yes;
        return abilities;
    }

    void renderWindow(AppModel& model, Commands& commands, const QString& name) {
        for (const QSize& size : sizes) {
            renderWindow(model, commands, name, size);
        }
    }

    /// After these buttons have been pressed.
    void renderPressed(AppModel& model, Commands& commands, const QString& name, const QStringList& buttons) {
        for (const QSize& size : sizes) {
            renderPressed(model, commands, name, buttons, size);
        }
    }

    void renderPressed(AppModel& model, Commands& commands, const QString& name, const QStringList& buttons,
                       const QSize& size) {
        auto window = std::make_unique<MainWindow>(model, commands);
        window->resize(size);
        window->show();
        for (const QString& button : buttons) {
            press(*window, button);
            QApplication::processEvents();
        }
        render(std::move(window), u"%1-%2x%3"_s.arg(name).arg(size.width()).arg(size.height()));
    }

    void renderWindow(AppModel& model, Commands& commands, const QString& name, const QSize& size) {
        auto window = std::make_unique<MainWindow>(model, commands);
        window->resize(size);
        render(std::move(window), u"%1-%2x%3"_s.arg(name).arg(size.width()).arg(size.height()));
    }

    void render(std::unique_ptr<QWidget> widget, const QString& name) {
        const qreal scale = qApp->devicePixelRatio();
        save(*widget, m_folder,
             u"%1-%2"_s.arg(name, m_theme) + (scale == 1 ? QString() : u"@%1x"_s.arg(scale)));
    }

    QDir m_folder;
    QString m_theme;
    test::TemporaryStore m_store;
    test::FakePlatform m_platform;
    const Abilities m_seen = m_platform.fakeAccessibility.able;
};

int renderInto(QApplication& application, const QDir& folder) {
    if (!folder.mkpath(u"."_s)) {
        std::fputs("cannot make the folder\n", stderr);
        return EXIT_FAILURE;
    }
    installStyle(application);
    const std::pair<QString, const Colors&> themes[] = {{u"light"_s, lightColors()},
                                                        {u"dark"_s, darkColors()}};
    for (const auto& [name, colors] : themes) {
        applyTheme(application, colors);
        if (application.devicePixelRatio() == 1) {
            save(*makeGallery(), folder, u"controls-"_s + name);
        }
        Studio(folder, name).renderAll();
    }
    return EXIT_SUCCESS;
}

} // namespace
} // namespace kestu

int main(int argc, char* argv[]) {
    // The same pictures on every machine.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: kestu_screens FOLDER\n", stderr);
        return 2;
    }
    QApplication::setApplicationDisplayName(QStringLiteral("KESTU"));
    QApplication::setApplicationVersion(QStringLiteral(KESTU_VERSION));
    return kestu::renderInto(application, QDir(QString::fromLocal8Bit(argv[1])));
}
