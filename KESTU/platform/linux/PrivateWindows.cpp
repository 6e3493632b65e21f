// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/PrivateWindows.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>

namespace kestu {

namespace {

// A browser ends a window's name with its own name:
//
//   Page — Mozilla Firefox                            Page - Chromium
//   Page — Mozilla Firefox Private Browsing           Page - Chromium (Incognito)
//   Page — Mozilla Firefox プライベートブラウジング   Page - Chromium（シークレット モード）
//
// and marks a private window (and a guest's, which keeps no history either) by words around that name, in
// the user's language. So not the words are listed but the names that may stand there alone; what has more
// than that is private, in languages that nobody here thought of too.
constexpr std::array makers{u"Firefox", u"Chromium", u"Chrome", u"Edge", u"Brave", u"Vivaldi"};
constexpr std::array plainNames{
    u"Firefox",
    u"Mozilla Firefox",
    u"Firefox Beta",
    u"Firefox Nightly",
    u"Firefox Developer Edition",
    u"Chromium",
    u"Chromium Beta",
    u"Chromium Dev",
    u"Chromium Canary",
    u"Google Chrome",
    u"Google Chrome Beta",
    u"Google Chrome Dev",
    u"Google Chrome Canary",
    u"Microsoft Edge",
    u"Microsoft Edge Beta",
    u"Microsoft Edge Dev",
    u"Microsoft Edge Canary",
    u"Brave",
    u"Brave Beta",
    u"Brave Nightly",
    u"Vivaldi",
    u"Vivaldi Snapshot",
};

// Some put the mark before their name, as a part of its own: "Page - [InPrivate] - Microsoft Edge".
constexpr std::array marks{
    u"InPrivate",
    u"Incognito",
    u"Private",
    u"Private Browsing",
    u"Private Window",
    u"Guest",
    u"プライベート",
    u"シークレット",
    u"プライベートブラウジング",
    u"プライベートウィンドウ",
    u"ゲスト",
    u"シークレット モード",
};

/// The parts between the dashes, without the invisible characters that some browsers put into their name.
QStringList partsOf(QString windowName) {
    static const QRegularExpression invisible(QStringLiteral("[\\x{200b}-\\x{200f}\\x{202a}-\\x{202e}]"));
    static const QRegularExpression dash(QStringLiteral("[ \\x{a0}][-–—][ \\x{a0}]"),
                                         QRegularExpression::UseUnicodePropertiesOption);
    return windowName.remove(invisible).split(dash);
}

bool isMark(const QString& part) {
    QStringView words = QStringView(part).trimmed();
    if (words.startsWith(u'[') && words.endsWith(u']')) {
        words = words.mid(1, words.size() - 2);
    }
    return std::any_of(marks.begin(), marks.end(),
                       [words](QStringView mark) { return words.compare(mark, Qt::CaseInsensitive) == 0; });
}

bool isMarkedBrowserName(const QString& part) {
    const QStringView name = QStringView(part).trimmed();
    const auto names = [name](QStringView maker) { return name.contains(maker); };
    const auto equals = [name](QStringView plain) { return name.compare(plain, Qt::CaseInsensitive) == 0; };
    return std::any_of(makers.begin(), makers.end(), names) &&
           std::none_of(plainNames.begin(), plainNames.end(), equals);
}

} // namespace

bool isPrivateWindow(const QString& windowName) {
    const QStringList parts = partsOf(windowName);
    // The first part is the page's title, whose words mark nothing, unless it is the only one.
    return isMarkedBrowserName(parts.last()) || std::any_of(parts.begin() + 1, parts.end(), isMark);
}

} // namespace kestu
