// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/parts/Texts.h"

#include "app/AppModel.h"
#include "ui/theme/Theme.h"

#include <QLocale>
#include <QRegularExpression>
#include <QWidget>

#include <utility>

namespace kestu {

QString dateText(QDate date) {
    return QLocale(QLocale::Japanese, QLocale::Japan).toString(date, QStringLiteral("yyyy年M月d日(ddd)"));
}

QString clockText(Instant instant, LocalClock& clock) {
    const auto local = clock.at(instant);
    if (!local) {
        return {};
    }
    const int minutes = local->secondOfDay / 60;
    return QStringLiteral("%1:%2").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

QString rangeText(const Interval& range, LocalClock& clock) {
    return clockText(range.start, clock) + QStringLiteral("〜") + clockText(range.end, clock);
}

QString labelOf(CategoryKind kind) {
    return kind == CategoryKind::project ? QStringLiteral("プロジェクト") : QStringLiteral("タグ");
}

QString labelOf(RuleField field) {
    switch (field) {
    case RuleField::app:
        return QStringLiteral("アプリ");
    case RuleField::title:
        return QStringLiteral("ウィンドウ名");
    case RuleField::domain:
        return QStringLiteral("ドメイン");
    case RuleField::url:
        return QStringLiteral("URL");
    }
    return {};
}

QString labelOf(RuleOperator op) {
    switch (op) {
    case RuleOperator::contains:
        return QStringLiteral("を含む");
    case RuleOperator::equals:
        return QStringLiteral("と一致");
    case RuleOperator::prefix:
        return QStringLiteral("で始まる");
    }
    return {};
}

QString sentenceOf(RuleField field, RuleOperator op, const QString& value) {
    return QStringLiteral("%1 が %2 %3").arg(labelOf(field), value, labelOf(op));
}

QString keysText(const QKeySequence& keys) {
    constexpr std::pair<QStringView, QStringView> arrows[] = {
        {u"Left", u"←"}, {u"Right", u"→"}, {u"Up", u"↑"}, {u"Down", u"↓"}};
    QString text = keys.toString(QKeySequence::PortableText);
    for (const auto& [word, arrow] : arrows) {
        text.replace(QRegularExpression(QStringLiteral("\\b%1\\b").arg(word)), arrow.toString());
    }
    return text;
}

QString tipText(const QString& name, const QKeySequence& keys) {
    return QStringLiteral("%1（%2）").arg(name, keysText(keys));
}

void tellKeys(QWidget& control, const QString& name, const QKeySequence& keys) {
    control.setToolTip(tipText(name, keys));
    control.setAccessibleDescription(keysText(keys));
}

QString projectName(const AppModel& model, std::optional<ProjectId> id) {
    const Project* project = id ? model.project(*id) : nullptr;
    return project ? project->name : QStringLiteral("未分類");
}

QColor projectColor(const AppModel& model, std::optional<ProjectId> id) {
    const Project* project = id ? model.project(*id) : nullptr;
    return project ? colorFromText(project->colorHex) : QColor();
}

QString tagName(const AppModel& model, TagId id) {
    const Tag* tag = model.tag(id);
    return tag ? tag->name : QStringLiteral("（削除済み）");
}

QColor tagColor(const AppModel& model, TagId id) {
    const Tag* tag = model.tag(id);
    return tag ? colorFromText(tag->colorHex) : QColor(Qt::gray);
}

bool seesAll(const AppModel& model) {
    return model.whyUnseen().isEmpty() && model.abilities().windows.kind != Ability::Kind::partly;
}

QString trackingStateText(const AppModel& model) {
    if (!model.isTracking()) {
        return QStringLiteral("一時停止中");
    }
    if (!model.whyUnseen().isEmpty()) {
        return QStringLiteral("記録できません");
    }
    return seesAll(model) ? QStringLiteral("記録中") : QStringLiteral("一部を記録中");
}

} // namespace kestu
