// SPDX-License-Identifier: GPL-3.0-or-later
//
// The pages of the product's web site. The base address stands here and nowhere else.
#pragma once

#include <QUrl>

namespace kestu {

enum class HelpPage { start, support, terms };

[[nodiscard]] inline QUrl addressOf(HelpPage page) {
    const QUrl base(QStringLiteral("https://kestu.example/"));
    switch (page) {
    case HelpPage::support:
        return base.resolved(QUrl(QStringLiteral("support/")));
    case HelpPage::terms:
        return base.resolved(QUrl(QStringLiteral("terms/")));
    case HelpPage::start:
        break;
    }
    return base.resolved(QUrl(QStringLiteral("start/")));
}

} // namespace kestu
