// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/DayAggregation.h"
#include "classify/DurationText.h"
#include "reports/ReportText.h"

#include <QStringList>

#include <algorithm>
#include <map>
#include <span>

namespace kestu {
namespace {

constexpr std::size_t mostNamed = 10;
constexpr std::size_t mostTitles = 5;
constexpr Seconds blockPause{120};
constexpr double shortestBlock = 300;

QString hoursText(double seconds) {
    return fixedText(seconds / 3600.0, 2);
}

std::span<const NamedTotals::value_type> firstOf(const NamedTotals& totals, std::size_t most) {
    return std::span(totals).first(std::min(totals.size(), most));
}

QString cell(QString text) {
    return text.replace(u'|', u'｜').replace(u'\n', u' ');
}

/// Writes the document from top to bottom; every section ends with one empty line.
class MarkdownWriter final {
public:
    explicit MarkdownWriter(const ReportBuilder& report)
        : m_report(report)
        , m_text(report)
        , m_projects(projectTotals(report.items))
        , m_days(dailyTotals(report.items, report.range, report.calendar))
        , m_dayCount(countDays()) {
        for (const ResolvedActivity& item : report.items) {
            m_total += secondsOf(item);
            m_manual += item.activity.isManual ? secondsOf(item) : 0;
        }
    }

    QString document() {
        title();
        about();
        overview();
        notes();
        projects();
        tags();
        if (m_dayCount >= 2) {
            days();
        }
        ranking(QStringLiteral("## よく使ったアプリ（上位10）"), appTotals(m_report.items));
        if (m_report.options.includeDetails) {
            details();
        }
        if (m_report.options.includeTimeline) {
            timeline();
        }
        return m_lines.join(u'\n');
    }

private:
    void line(const QString& text) { m_lines << text; }
    void endSection() { m_lines << QString(); }

    [[nodiscard]] qint64 countDays() {
        const auto first = m_text.localClock().at(m_report.range.start);
        const auto end = m_text.localClock().at(m_report.range.end);
        return first && end ? std::max<qint64>(1, first->date.daysTo(end->date)) : 1;
    }

    [[nodiscard]] QString period() {
        return m_text.date(m_report.range.start) + u'〜' + m_text.date(m_report.range.end - Seconds{1});
    }

    [[nodiscard]] QString share(double part) const {
        return m_total > 0 ? fixedText(part / m_total * 100.0, 1) + u'%' : QStringLiteral("0%");
    }

    [[nodiscard]] QString totalsRow(const QString& name, double seconds) const {
        return QStringLiteral("| %1 | %2 | %3 | %4 |")
            .arg(cell(name), formatDuration(seconds), hoursText(seconds), share(seconds));
    }

    void title() {
        line(QStringLiteral("# 作業レポート（%1）").arg(period()));
        endSection();
    }

    void about() {
        line(QStringLiteral("## この資料について"));
        line(QStringLiteral(
            "- Mac "
            "の作業記録アプリ「KESTU」が自動で集めた記録です。前面にあったアプリ・ウィンドウ名・ブラウザの "
            "URL を2秒ごとに記録し、操作のない時間は除いています。"));
        line(QStringLiteral(
            "- "
            "**プロジェクト**は1つの区間に1つだけ付きます。プロジェクト別の時間を足すと記録の合計と一致します"
            "（未分類を含む）。"));
        line(QStringLiteral(
            "- "
            "**タグ**"
            "は1つの区間にいくつでも付きます。タグ別の時間は重なるため、足しても合計とは一致しません。"));
        line(QStringLiteral("- 「手動」は、PC を離れていた時間などを本人があとから登録した区間です。"));
        line(QStringLiteral("- 時刻は %1 の現地時刻です。")
                 .arg(QString::fromUtf8(m_report.calendar.zone.id())));
        endSection();
    }

    void overview() {
        const qint64 recordedDays = countRecordedDays();
        const auto unassigned =
            std::ranges::find(m_projects, std::optional<ProjectId>(), &ProjectTotals::value_type::first);
        const double unassignedSeconds = unassigned == m_projects.end() ? 0 : unassigned->second;
        line(QStringLiteral("## 概要"));
        line(QStringLiteral("- 期間：%1（%2日間、記録のある日 %3日）")
                 .arg(period())
                 .arg(m_dayCount)
                 .arg(recordedDays));
        line(QStringLiteral("- 記録の合計：%1（%2時間）").arg(formatDuration(m_total), hoursText(m_total)));
        if (recordedDays > 0) {
            line(QStringLiteral("- 記録のある日の平均：") +
                 formatDuration(m_total / static_cast<double>(recordedDays)));
        }
        line(QStringLiteral("- 未分類：%1（%2）")
                 .arg(formatDuration(unassignedSeconds), share(unassignedSeconds)));
        line(QStringLiteral("- うち手動で登録：") + formatDuration(m_manual));
        endSection();
    }

    [[nodiscard]] qint64 countRecordedDays() const {
        qint64 count = 0;
        for (std::size_t i = 0; i < m_days.size(); ++i) {
            count += i == 0 || m_days[i].day != m_days[i - 1].day ? 1 : 0;
        }
        return count;
    }

    void notes() {
        if (m_report.notes.empty()) {
            return;
        }
        line(QStringLiteral("## 日ごとのまとめ（本人または AI が書いたもの）"));
        for (const DailyNote& note : m_report.notes) {
            line(QStringLiteral("### ") + note.day);
            line(note.summary);
            endSection();
        }
    }

    void projects() {
        line(QStringLiteral("## プロジェクト別"));
        line(QStringLiteral("| プロジェクト | 時間 | 時間（h） | 割合 |"));
        line(QStringLiteral("|---|---|---|---|"));
        for (const auto& [id, seconds] : m_projects) {
            line(totalsRow(m_text.projectName(id), seconds));
        }
        endSection();
    }

    void tags() {
        const TagTotals totals = tagTotals(m_report.items);
        if (totals.empty()) {
            return;
        }
        line(QStringLiteral("## タグ別（重なりあり）"));
        line(QStringLiteral("| タグ | 時間 | 時間（h） | 記録の合計に対する割合 |"));
        line(QStringLiteral("|---|---|---|---|"));
        for (const auto& [id, seconds] : totals) {
            line(totalsRow(m_text.tagName(id), seconds));
        }
        endSection();
    }

    void days() {
        line(QStringLiteral("## 日別"));
        line(QStringLiteral("| 日付 | 合計 | 内訳（長い順） |"));
        line(QStringLiteral("|---|---|---|"));
        for (auto first = m_days.begin(); first != m_days.end();) {
            const auto last = std::find_if(first, m_days.end(),
                                           [&](const DailyTotal& total) { return total.day != first->day; });
            double seconds = 0;
            QStringList parts;
            for (const DailyTotal& total : std::span(first, last)) {
                seconds += total.seconds;
                parts << m_text.projectName(total.projectId) + u' ' + formatDuration(total.seconds);
            }
            line(QStringLiteral("| %1 | %2 | %3 |")
                     .arg(m_text.date(first->day), formatDuration(seconds), cell(parts.join(u'、'))));
            first = last;
        }
        endSection();
    }

    void ranking(const QString& heading, const NamedTotals& totals) {
        line(heading);
        for (const auto& [name, seconds] : firstOf(totals, mostNamed)) {
            line(QStringLiteral("- ") + name + u'：' + formatDuration(seconds));
        }
        endSection();
    }

    void details() {
        if (const NamedTotals sites = domainTotals(m_report.items); !sites.empty()) {
            ranking(QStringLiteral("## よく見たサイト（上位10）"), sites);
        }
        line(QStringLiteral("## プロジェクトごとの主な作業（ウィンドウ名の上位）"));
        const auto itemsOf = itemsByProject();
        for (const auto& [id, seconds] : m_projects) {
            const NamedTotals titles = titleTotals(itemsOf.at(id));
            if (titles.empty()) {
                continue;
            }
            line(QStringLiteral("### %1（%2）").arg(m_text.projectName(id), formatDuration(seconds)));
            for (const auto& [title, titleSeconds] : firstOf(titles, mostTitles)) {
                line(QStringLiteral("- ") + title + u'：' + formatDuration(titleSeconds));
            }
        }
        endSection();
    }

    [[nodiscard]] std::map<std::optional<ProjectId>, std::vector<ResolvedActivity>> itemsByProject() const {
        std::map<std::optional<ProjectId>, std::vector<ResolvedActivity>> items;
        for (const ResolvedActivity& item : m_report.items) {
            items[item.projectId].push_back(item);
        }
        return items;
    }

    void timeline() {
        line(QStringLiteral("## 時系列（同じプロジェクトが続いた時間をまとめたもの・5分以上）"));
        std::optional<QString> day;
        for (const TimeBlock& block : timeBlocks(m_report.items, blockPause)) {
            if (block.seconds < shortestBlock) {
                continue;
            }
            if (const QString date = m_text.date(block.start); day != date) {
                line(QStringLiteral("### ") + date);
                day = date;
            }
            const QString labels = block.labels.isEmpty() ? QString() : u'：' + block.labels.join(u'、');
            line(QStringLiteral("- ") + m_text.clock(block.start) + u'–' + m_text.clock(block.end) + u' ' +
                 m_text.projectName(block.projectId) + u'（' + formatDuration(block.seconds) + u'）' +
                 labels);
        }
        endSection();
    }

    const ReportBuilder& m_report;
    ReportText m_text;
    ProjectTotals m_projects;
    std::vector<DailyTotal> m_days;
    qint64 m_dayCount;
    double m_total = 0;
    double m_manual = 0;
    QStringList m_lines;
};

} // namespace

QString ReportBuilder::markdown() const {
    return MarkdownWriter(*this).document();
}

} // namespace kestu
