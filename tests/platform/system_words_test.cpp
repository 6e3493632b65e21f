// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the screens say of each kind of desktop, in each state of it.
#include "platform/SystemWords.h"

#include <QDir>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using Kind = Ability::Kind;

Abilities seen(const QString& source) {
    const Ability yes{.kind = Kind::yes};
    return {.source = source, .windows = yes, .titles = yes, .addresses = yes, .idle = yes, .lock = yes};
}

Abilities unseen(const Ability& windows) {
    Abilities abilities;
    abilities.windows = abilities.titles = windows;
    abilities.addresses.kind = windows.kind;
    return abilities;
}

TEST(SystemWordsTest, SayWhatHoldsOnThisDesktopAndWhatWouldHelp) {
    Abilities addressesLater = seen(u"X11"_s);
    addressesLater.addresses.note = u"ブラウザが前面に来ると、オンになります。"_s;
    Abilities withoutTitles = seen(u"a"_s);
    withoutTitles.titles = {};
    const struct {
        const char* desktop;
        Abilities abilities;
        QString warning; // as it begins; what is not a warning is not shown
        QString warningText;
        QString permissionStep; // holds this
        QString addressNote;    // begins with this
    } rows[] = {
        {"X11", seen(u"X11"_s), {}, {}, u"（X11）では、ウィンドウ名をこのまま記録できます"_s, u"Firefox"_s},
        {"wlroots", seen(u"wlr-foreign-toplevel"_s), {}, {}, u"（wlr-foreign-toplevel）では"_s, u"Firefox"_s},
        {"KDE", seen(u"KWin"_s), {}, {}, u"（KWin）では"_s, u"Firefox"_s},
        {"the bus is not on yet", addressesLater, {}, {}, u"（X11）"_s, u"ブラウザが前面に来ると"_s},
        {"GNOME before",
         unseen({.kind = Kind::no, .note = u"押すとオンになります。"_s, .mayBeRequested = true}),
         u"ウィンドウを記録するには許可が必要です"_s, u"押すとオンになります。"_s,
         u"押すとオンになります。"_s, u"このデスクトップでは"_s},
        {"GNOME, on", seen(u"GNOME"_s), {}, {}, u"（GNOME）では"_s, u"Firefox"_s},
        {"GNOME, after login", unseen({.kind = Kind::afterLogin}), u"次のログインから記録します"_s,
         u"一度ログアウトして"_s, u"一度ログアウトして"_s, u"Firefox"_s},
        {"partial", unseen({.kind = Kind::partly, .note = u"ターミナルは記録されません。"_s}),
         u"一部のプログラムだけを記録しています"_s, u"ターミナルは"_s, u"ターミナルは"_s, u"Firefox"_s},
        {"nothing", unseen({}), u"ウィンドウを見られません"_s,
         u"このデスクトップは手前のウィンドウを知らせない"_s, u"記録されません"_s, u"このデスクトップでは"_s},
        {"titles alone are missing", withoutTitles, u"ウィンドウ名を見られません"_s, u"アプリ名だけ"_s,
         u"アプリ名だけ"_s, u"Firefox"_s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.desktop);
        const SystemWords words = linuxWords(row.abilities, u"/data"_s);
        if (!row.warning.isEmpty()) {
            EXPECT_EQ(words.warning, row.warning);
            EXPECT_TRUE(words.warningText.startsWith(row.warningText)) << words.warningText.toStdString();
        }
        EXPECT_TRUE(words.permissionStep.contains(row.permissionStep)) << words.permissionStep.toStdString();
        EXPECT_TRUE(words.addressNote.startsWith(row.addressNote)) << words.addressNote.toStdString();
        for (const QString& text : {words.greeting, words.permissionStep, words.addressStep, words.warning,
                                    words.warningText, words.addressNote, words.dataNote}) {
            EXPECT_FALSE(text.isEmpty());
            EXPECT_FALSE(text.contains(u"Mac") || text.contains(u"Safari")) << text.toStdString();
        }
    }
}

TEST(SystemWordsTest, NameTheFolderThatHoldsTheRecords) {
    const QString home = QDir::homePath();
    const std::pair<QString, QString> rows[] = {
        {home + u"/.local/share/KESTU"_s, u"（~/.local/share/KESTU）"_s},
        {u"/mnt/仕事/KESTU"_s, u"（/mnt/仕事/KESTU）"_s},
        {home + u"-other/KESTU"_s, u"（%1-other/KESTU）"_s.arg(home)},
    };
    for (const auto& [folder, shown] : rows) {
        EXPECT_TRUE(
            linuxWords({}, folder)
                .dataNote.startsWith(u"記録はこのパソコンの中"_s + shown + u"に保存されます。外部に"_s));
    }
    EXPECT_EQ(
        macWords(home + u"/Library/Application Support/KESTU"_s).dataNote,
        u"記録はこの Mac の中（~/Library/Application Support/KESTU）に保存されます。外部に送られるのは、"
        "あなたが MCP でつないだ AI が読んだ分だけです。"_s);
}

} // namespace
} // namespace kestu
