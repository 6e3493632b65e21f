// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/SliceTexts.h"

#include "app/AppModel.h"
#include "ui/parts/Texts.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

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

QString nameWith(const QString& range, const ResolvedActivity& item, const AppModel& model) {
    return joined(
        {range, item.activity.appName, shortened(item.activity.title), projectName(model, item.projectId)},
        QStringLiteral("、"));
}

} // namespace

std::vector<ResolvedActivity> piecesOf(ActivityId id, const AppModel& model) {
    std::vector<ResolvedActivity> pieces;
    std::ranges::copy_if(model.dayItems(), std::back_inserter(pieces),
                         [id](const ResolvedActivity& item) { return item.activity.id == id; });
    return pieces;
}

QString rangesText(std::span<const ResolvedActivity> pieces, const AppModel& model) {
    QStringList ranges;
    for (const ResolvedActivity& piece : pieces) {
        ranges += rangeOf(piece, model);
    }
    return ranges.join(QStringLiteral("、"));
}

QString sliceHelp(const ResolvedActivity& item, const AppModel& model) {
    const Activity& activity = item.activity;
    return joined({rangeOf(item, model), activity.appName, shortened(activity.title),
                   activity.domain.value_or(QString()), tagsOf(item, model)},
                  QStringLiteral("\n"));
}

QString sliceName(const ResolvedActivity& item, const AppModel& model) {
    return nameWith(rangeOf(item, model), item, model);
}

QString activityName(const ResolvedActivity& item, const AppModel& model) {
    return nameWith(rangesText(piecesOf(item.activity.id, model), model), item, model);
}

} // namespace kestu
