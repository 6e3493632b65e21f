// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/DayAggregation.h"
#include "reports/ReportText.h"

#include <QStringList>

#include <algorithm>

namespace kestu {
namespace {

const QString lineEnd = QStringLiteral("\r\n");

QString quotedWhereNeeded(QString field) {
    const bool needsQuotes =
        field.contains(u',') || field.contains(u'"') || field.contains(u'\r') || field.contains(u'\n');
    return needsQuotes ? u'"' + field.replace(u'"', QStringLiteral("\"\"")) + u'"' : field;
}

void appendLine(QString& csv, const QStringList& fields) {
    for (qsizetype place = 0; place < fields.size(); ++place) {
        if (place > 0) {
            csv += u',';
        }
        csv += quotedWhereNeeded(fields[place]);
    }
    csv += lineEnd;
}

QString tagNames(const QSet<TagId>& ids, const ReportText& text) {
    QStringList names;
    for (const TagId id : ids) {
        names << text.tagName(id);
    }
    // By code point: QString's own order puts emoji before the full-width marks.
    std::ranges::sort(names, {}, &QString::toUcs4);
    return names.join(u';');
}

QStringList fieldsOf(const ResolvedActivity& item, ReportText& text) {
    const Activity& activity = item.activity;
    return {text.isoDate(activity.start),
            text.clock(activity.start),
            text.clock(activity.end),
            fixedText(secondsOf(item) / 60.0, 1),
            text.projectName(item.projectId),
            tagNames(item.tagIds, text),
            activity.appName,
            activity.title,
            activity.domain.value_or(QString()),
            activity.url.value_or(QString()),
            activity.isManual ? QStringLiteral("手動") : QStringLiteral("自動")};
}

} // namespace

QString ReportBuilder::csv() const {
    std::vector<const ResolvedActivity*> sorted;
    for (const ResolvedActivity& item : items) {
        sorted.push_back(&item);
    }
    std::ranges::stable_sort(sorted, {}, [](const ResolvedActivity* item) { return item->activity.start; });

    ReportText text(*this);
    QString csv(QChar::ByteOrderMark);
    appendLine(csv, {QStringLiteral("日付"), QStringLiteral("開始"), QStringLiteral("終了"),
                     QStringLiteral("分"), QStringLiteral("プロジェクト"), QStringLiteral("タグ"),
                     QStringLiteral("アプリ"), QStringLiteral("ウィンドウ名"), QStringLiteral("ドメイン"),
                     QStringLiteral("URL"), QStringLiteral("種類")});
    for (const ResolvedActivity* item : sorted) {
        appendLine(csv, fieldsOf(*item, text));
    }
    return csv;
}

} // namespace kestu
