// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ReportCommand.h"

#include "app/Ledger.h"
#include "app/ReportExport.h"
#include "base/LocalClock.h"
#include "classify/Resolution.h"
#include "reports/ReportBuilder.h"
#include "reports/ReportPeriod.h"

#include <QCommandLineParser>

#include <variant>

namespace kestu {
namespace {

const QString usage =
    QStringLiteral("使い方: kestu report [--period day|week|month] [--date YYYY-MM-DD] "
                   "[--format markdown|csv] [--no-details] [--no-timeline] [--output FILE]\n");

const QString help =
    QStringLiteral("使い方: kestu [--background]     記録を始めます（--background: ウィンドウを開きません）\n"
                   "        kestu report [オプション]  レポートを書き出します\n"
                   "        kestu --check              この画面で何を記録できるかを調べます\n"
                   "        kestu --help | --version\n"
                   "\n"
                   "report のオプション:\n"
                   "  --period day|week|month   期間（初期値: week）\n"
                   "  --date YYYY-MM-DD         期間に含まれる日（初期値: 今日）\n"
                   "  --format markdown|csv     形式（初期値: markdown）\n"
                   "  --no-details              サイトとウィンドウ名を含めません\n"
                   "  --no-timeline             時系列を含めません\n"
                   "  --output FILE             ファイルに保存します（初期値: 標準出力）\n"
                   "\n"
                   "環境変数 KESTU_DB_PATH で、読み書きするデータベースを指定できます。\n");

struct ReportRequest {
    ReportPeriod period = ReportPeriod::week;
    QDate date; // invalid for today
    ReportFormat format = ReportFormat::markdown;
    ReportBuilder::Options options;
    QString output; // empty for standard output
};

/// What was asked for, or what is wrong with it.
std::variant<ReportRequest, QString> parsedRequest(const QStringList& arguments) {
    const QString value = QStringLiteral("value");
    const QCommandLineOption period(QStringLiteral("period"), {}, value, QStringLiteral("week"));
    const QCommandLineOption date(QStringLiteral("date"), {}, value);
    const QCommandLineOption format(QStringLiteral("format"), {}, value, QStringLiteral("markdown"));
    const QCommandLineOption noDetails(QStringLiteral("no-details"));
    const QCommandLineOption noTimeline(QStringLiteral("no-timeline"));
    const QCommandLineOption output(QStringLiteral("output"), {}, value);
    QCommandLineParser parser;
    parser.addOptions({period, date, format, noDetails, noTimeline, output});

    // The parser takes the first word for the program's name; here that is "report".
    if (!parser.parse(arguments)) {
        const QStringList unknown = parser.unknownOptionNames();
        return unknown.isEmpty() ? QStringLiteral("オプションに値がありません。")
                                 : QStringLiteral("不明なオプションです：%1").arg(unknown.first());
    }
    if (!parser.positionalArguments().isEmpty()) {
        return QStringLiteral("不明な引数です：%1").arg(parser.positionalArguments().first());
    }
    const auto wantedPeriod = reportPeriodFromRaw(parser.value(period));
    if (!wantedPeriod) {
        return QStringLiteral("期間が正しくありません：%1").arg(parser.value(period));
    }
    const QDate day = QDate::fromString(parser.value(date), u"yyyy-MM-dd");
    if (parser.isSet(date) && !day.isValid()) {
        return QStringLiteral("日付が正しくありません：%1").arg(parser.value(date));
    }
    const bool isCsv = parser.value(format) == u"csv";
    if (!isCsv && parser.value(format) != u"markdown") {
        return QStringLiteral("形式が正しくありません：%1").arg(parser.value(format));
    }
    if (parser.isSet(output) && parser.value(output).isEmpty()) {
        return QStringLiteral("保存先のファイル名がありません。");
    }
    return ReportRequest{
        .period = *wantedPeriod,
        .date = day,
        .format = isCsv ? ReportFormat::csv : ReportFormat::markdown,
        .options = {.includeDetails = !parser.isSet(noDetails), .includeTimeline = !parser.isSet(noTimeline)},
        .output = parser.value(output)};
}

QString reportText(const ReportRequest& request, const CommandContext& context) {
    const auto repository = openRepositoryForReading(context.location);
    const Calendar calendar = reportCalendar(context.calendar);
    const Instant anchor = request.date.isValid() ? startOfDay(request.date, calendar) : context.now;
    const Interval range = periodInterval(request.period, anchor, calendar);
    const ReportBuilder report{.range = range,
                               .items = resolved(countedIn(*repository, range), repository->rules()),
                               .projects = repository->projects(),
                               .tags = repository->tags(),
                               .options = request.options,
                               .notes = {},
                               .calendar = calendar};
    return textOf(report, request.format);
}

CommandResult failure(const QString& message) {
    return {.exitCode = 1, .output = {}, .errors = message + u'\n'};
}

CommandResult runReport(const ReportRequest& request, const CommandContext& context) {
    try {
        const QString text = reportText(request, context);
        if (request.output.isEmpty()) {
            return {.exitCode = 0, .output = text, .errors = {}};
        }
        const auto reason = saveReport(request.output, text);
        return reason ? failure(*reason) : CommandResult{};
    } catch (const DatabaseError& error) {
        return failure(error.description());
    }
}

} // namespace

bool isCommand(const QStringList& arguments) {
    const QStringList commands{QStringLiteral("report"), QStringLiteral("--help"), QStringLiteral("-h"),
                               QStringLiteral("--version")};
    return !arguments.isEmpty() && commands.contains(arguments.first());
}

CommandResult runCommand(const QStringList& arguments, const CommandContext& context) {
    if (arguments.first() == u"--version") {
        return {.exitCode = 0, .output = QStringLiteral("KESTU " KESTU_VERSION "\n"), .errors = {}};
    }
    if (arguments.first() != u"report" || arguments.contains(u"--help")) {
        return {.exitCode = 0, .output = help, .errors = {}};
    }
    const auto request = parsedRequest(arguments);
    if (const auto* reason = std::get_if<QString>(&request)) {
        return usageError(*reason);
    }
    return runReport(std::get<ReportRequest>(request), context);
}

CommandResult usageError(const QString& reason) {
    return {.exitCode = 2, .output = {}, .errors = reason + u'\n' + usage};
}

} // namespace kestu
