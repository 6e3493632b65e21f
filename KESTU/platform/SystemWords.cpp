// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/SystemWords.h"

#include <QDir>

namespace kestu {
namespace {

using Kind = Ability::Kind;

/// As people write it: "~/.local/share/KESTU".
QString shortPath(const QString& folder) {
    const QString home = QDir::homePath();
    return folder.startsWith(home + u'/') ? u'~' + folder.sliced(home.size()) : folder;
}

QString dataNote(const QString& machine, const QString& dataFolder) {
    return QStringLiteral("記録は%1の中（%2）に保存されます。外部に送られるのは、"
                          "あなたが MCP でつないだ AI が読んだ分だけです。")
        .arg(machine, shortPath(dataFolder));
}

QString orElse(const QString& note, const QString& otherwise) {
    return note.isEmpty() ? otherwise : note;
}

QString warning(const Ability& windows) {
    switch (windows.kind) {
    case Kind::yes:
        return QStringLiteral("ウィンドウ名を見られません");
    case Kind::partly:
        return QStringLiteral("一部のプログラムだけを記録しています");
    case Kind::afterLogin:
        return QStringLiteral("次のログインから記録します");
    case Kind::no:
        break;
    }
    return windows.mayBeRequested ? QStringLiteral("ウィンドウを記録するには許可が必要です")
                                  : QStringLiteral("ウィンドウを見られません");
}

/// What the session says of itself; what can be said of any session where it says nothing.
QString warningText(const Abilities& abilities) {
    switch (abilities.windows.kind) {
    case Kind::yes:
        return orElse(abilities.titles.note, QStringLiteral("アプリ名だけを記録します。"));
    case Kind::partly:
        return orElse(abilities.windows.note,
                      QStringLiteral("ほかのプログラムが前面にあるあいだは、何も記録しません。"));
    case Kind::afterLogin:
        return orElse(abilities.windows.note,
                      QStringLiteral("一度ログアウトして、ログインし直してください。"));
    case Kind::no:
        break;
    }
    return orElse(
        abilities.windows.note,
        abilities.windows.mayBeRequested
            ? QStringLiteral("「許可する」を押すまで、何も記録しません。")
            : QStringLiteral("このデスクトップは手前のウィンドウを知らせないため、記録されません。"));
}

QString permissionStep(const Abilities& abilities) {
    if (abilities.windows.kind != Kind::yes || abilities.titles.kind != Kind::yes) {
        return warningText(abilities);
    }
    return QStringLiteral("このデスクトップ（%1）では、ウィンドウ名をこのまま記録できます。"
                          "「許可する」を押すと、ブラウザの URL も記録できます。")
        .arg(abilities.source);
}

QString addressStep(const Ability& addresses) {
    if (addresses.kind == Kind::no) {
        return orElse(addresses.note,
                      QStringLiteral("このデスクトップでは、ページの URL を読み取れません。"));
    }
    return QStringLiteral("Firefox では、見ているページの URL も記録されます。Chromium 系のブラウザは、"
                          "起動のしかたを変えてください（ヘルプの「うまくいかないとき」）。");
}

QString addressNote(const Ability& addresses) {
    if (addresses.kind == Kind::no) {
        return addressStep(addresses);
    }
    return addresses.note + QStringLiteral("Firefox はそのままで、Chromium 系のブラウザは起動のしかたを"
                                           "変えると読み取れます（ヘルプの「うまくいかないとき」）。");
}

} // namespace

SystemWords macWords(const QString& dataFolder) {
    return {
        .greeting = QStringLiteral("Mac の作業を自動で記録します。記録はこの Mac の中だけに保存されます。"),
        .permissionStep = QStringLiteral("システム設定の「アクセシビリティ」でKESTUをオンにします。オン"
                                         "にしないと、アプリ名だけの記録になります。"),
        .addressStep =
            QStringLiteral("Safari や Chrome を使うと「KESTUが制御しようとしています」と確認が出ます。"
                           "「OK」を押すと、見ているページの URL も記録されます。"),
        .warning = QStringLiteral("ウィンドウ名を記録するには「アクセシビリティ」の許可が必要です"),
        .warningText = QStringLiteral("許可がないあいだは、アプリ名だけを記録します。"),
        .addressNote = QStringLiteral("ブラウザの URL は、各ブラウザで初めて記録するときに確認が出ます。"),
        .dataNote = dataNote(QStringLiteral("この Mac "), dataFolder),
    };
}

SystemWords linuxWords(const Abilities& abilities, const QString& dataFolder) {
    return {
        .greeting =
            QStringLiteral("パソコンの作業を自動で記録します。記録はこのパソコンの中だけに保存されます。"),
        .permissionStep = permissionStep(abilities),
        .addressStep = addressStep(abilities.addresses),
        .warning = warning(abilities.windows),
        .warningText = warningText(abilities),
        .addressNote = addressNote(abilities.addresses),
        .dataNote = dataNote(QStringLiteral("このパソコン"), dataFolder),
    };
}

QString abilityText(Ability::Kind kind) {
    switch (kind) {
    case Kind::yes:
        return QStringLiteral("わかります");
    case Kind::partly:
        return QStringLiteral("一部だけ");
    case Kind::afterLogin:
        return QStringLiteral("次のログインから");
    case Kind::no:
        break;
    }
    return QStringLiteral("わかりません");
}

} // namespace kestu
