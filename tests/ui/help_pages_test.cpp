// SPDX-License-Identifier: GPL-3.0-or-later
//
// The help pages as they lie on the disk: whole, every link and picture there, and naming exactly the keys
// that the program has.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/TemporaryStore.h"
#include "ui/Commands.h"
#include "ui/HelpPages.h"
#include "ui/MainWindow.h"
#include "ui/parts/Texts.h"

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QShortcut>
#include <QUrl>
#include <QXmlStreamReader>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

const QDir pagesFolder(QStringLiteral(KESTU_HELP_PAGES));
constexpr HelpPage allPages[] = {HelpPage::start, HelpPage::support, HelpPage::terms};

struct Page {
    QStringList links; // whatever the page needs or leads to
    QStringList ids;
    QStringList shortcuts; // the keys in the table of that id
    QString fault;
};

Page read(const QString& path) {
    Page page;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        page.fault = file.errorString();
        return page;
    }
    QXmlStreamReader reader(&file);
    bool inShortcuts = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            for (const auto& name : {u"href"_s, u"src"_s, u"srcset"_s}) {
                if (reader.attributes().hasAttribute(name)) {
                    page.links << reader.attributes().value(name).toString();
                }
            }
            const QString id = reader.attributes().value(u"id"_s).toString();
            page.ids << id;
            inShortcuts = inShortcuts || id == u"shortcuts";
            if (inShortcuts && reader.name() == u"kbd") {
                page.shortcuts << reader.readElementText();
            }
        } else if (reader.isEndElement() && reader.name() == u"table") {
            inShortcuts = false;
        }
    }
    page.fault = reader.errorString();
    return page;
}

TEST(HelpPages, LeadOnlyToWhatIsInstalledWithThem) {
    QStringList needed;
    for (const HelpPage wanted : allPages) {
        const QString path = pagesFolder.filePath(fileOf(wanted).section(u'/', -2));
        const Page page = read(path);
        ASSERT_EQ(page.fault, QString()) << path.toStdString();
        for (const QString& link : page.links) {
            const QUrl target = QUrl::fromLocalFile(path).resolved(QUrl(link));
            const QString file = target.toLocalFile();
            needed << file;
            EXPECT_TRUE(file.startsWith(pagesFolder.path() + u'/') && QFileInfo(file).isFile())
                << link.toStdString();
            EXPECT_TRUE(!target.hasFragment() || read(file).ids.contains(target.fragment()))
                << link.toStdString();
        }
    }
    QDirIterator files(pagesFolder.path(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        EXPECT_TRUE(needed.contains(file)) << "nothing leads to " << file.toStdString();
        EXPECT_LT(QFileInfo(file).size(), 100 * 1024) << file.toStdString();
    }
}

TEST(HelpPages, NameTheKeysOfTheProgramAndNoOthers) {
    test::TemporaryStore store;
    test::FakePlatform platform;
    platform.fakeSettings.booleans[u"welcomeShown"_s] = true;
    AppModel model(std::move(store.repository), platform,
                   {.clock = systemNow, .calendar = systemCalendar, .screen = {}});
    Commands commands(model);
    MainWindow window(model, commands);
    for (const SidebarEntry& entry : sidebarEntries) {
        model.setScreen(entry.item); // each is made when it is first shown
    }
    QStringList keys;
    for (const auto* shortcut : window.findChildren<QShortcut*>()) {
        keys << keysText(shortcut->key());
    }
    QList<QWidget*> widgets = window.findChildren<QWidget*>();
    widgets << &window;
    for (const QWidget* widget : widgets) {
        for (const QAction* action : widget->actions()) {
            keys << keysText(action->shortcut());
        }
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
            keys << keysText(button->shortcut());
        }
    }
    keys.removeAll(QString());
    keys.removeDuplicates();
    ASSERT_FALSE(keys.isEmpty());
    const Page page = read(pagesFolder.filePath(u"support/index.html"_s));
    EXPECT_THAT(page.shortcuts, testing::UnorderedElementsAreArray(keys));
}

} // namespace
} // namespace kestu
