// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/SliceTexts.h"

#include "app/AppModel.h"
#include "ui/Texts.h"

#include <QStringList>

namespace kestu {
namespace {

constexpr qsizetype longestTitle = 400; // a tooltip must leave the screen in sight

QString shortened(const QString& title) {
    return title.size() <= longestTitle ? title : title.left(longestTitle - 1) + u'…';
}

QString rangeOf(const ResolvedActivity& item, const AppModel& model) {
    LocalClock clock(model.calendar());
    return rangeText({.start = item.activity.start, .end = item.activity.end}, clock);
}

QString joined(QStringList parts, const QString& separator) {
    parts.removeAll(QString());
    return parts.join(separator);
}

QString tagsOf(const ResolvedActivity& item, const AppModel& model) {
    QStringList names;
    for (const TagId id : item.tagIds) {
        names += tagName(model, id);
    }
    names.sort();
    return names.isEmpty() ? QString() : QStringLiteral("タグ：") + names.join(QStringLiteral("・"));
}

} // namespace

QString sliceHelp(const ResolvedActivity& item, const AppModel& model) {
    const Activity& activity = item.activity;
    return joined({rangeOf(item, model), activity.appName, shortened(activity.title),
                   activity.domain.value_or(QString()), tagsOf(item, model)},
                  QStringLiteral("\n"));
}

QString sliceName(const ResolvedActivity& item, const AppModel& model) {
    return joined({rangeOf(item, model), item.activity.appName, shortened(item.activity.title),
                   projectName(model, item.projectId)},
                  QStringLiteral("、"));
}

} // namespace kestu
