// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SelfCheck.h"

#include "platform/SystemWords.h"

#include <QSysInfo>

namespace kestu {
namespace {

QString orUnknown(const QString& text) {
    return text.isEmpty() ? QStringLiteral("不明") : text;
}

QString lineOf(const QString& label, const QString& text) {
    return label + QStringLiteral("：") + text + u'\n';
}

QString noteOf(const QString& note) {
    return note.isEmpty() ? QString() : QStringLiteral("  ") + note + u'\n';
}

QString lineOf(const QString& label, const Ability& ability) {
    return lineOf(label, abilityText(ability.kind)) + noteOf(ability.note);
}

QString thereIs(bool isThere) {
    return isThere ? QStringLiteral("あります") : QStringLiteral("ありません");
}

QString recordingText(const SelfCheck& check) {
    if (!check.whyUnseen.isEmpty()) {
        return QStringLiteral("できません");
    }
    return check.abilities.windows.kind == Ability::Kind::partly ? QStringLiteral("一部だけできます")
                                                                 : QStringLiteral("できます");
}

} // namespace

CommandResult reportOf(const SelfCheck& check) {
    const Abilities& abilities = check.abilities;
    Ability titles = abilities.titles;
    if (titles.note == abilities.windows.note) {
        titles.note.clear(); // once is enough
    }
    const QString output =
        lineOf(QStringLiteral("KESTU"), QStringLiteral(KESTU_VERSION)) +
        lineOf(QStringLiteral("システム"), QSysInfo::prettyProductName()) +
        lineOf(QStringLiteral("Qt"),
               QStringLiteral("%1（%2）").arg(QString::fromLatin1(qVersion()), check.qtPlatform)) +
        lineOf(QStringLiteral("セッション"), orUnknown(check.session)) +
        lineOf(QStringLiteral("デスクトップ"), orUnknown(check.desktop)) +
        lineOf(QStringLiteral("トレイ"), thereIs(check.hasTray)) +
        lineOf(QStringLiteral("ウィンドウを知らせるもの"),
               abilities.source.isEmpty() ? thereIs(false) : abilities.source) +
        lineOf(QStringLiteral("前面のウィンドウ"), abilities.windows) +
        lineOf(QStringLiteral("ウィンドウ名"), titles) +
        lineOf(QStringLiteral("ブラウザの URL"), abilities.addresses) +
        lineOf(QStringLiteral("操作のない時間"), abilities.idle) +
        lineOf(QStringLiteral("画面のロック"), abilities.lock) +
        lineOf(QStringLiteral("記録"), recordingText(check)) +
        noteOf(check.whyUnseen == abilities.windows.note ? QString() : check.whyUnseen);
    return {.exitCode = check.whyUnseen.isEmpty() ? 0 : 1, .output = output, .errors = {}};
}

} // namespace kestu
