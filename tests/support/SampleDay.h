// SPDX-License-Identifier: GPL-3.0-or-later
//
// A day as a person has it, for pictures and for tests of screens: Wednesday, 18 November 2026 in Tokyo, at
// 18:44, with 8 hours 26 minutes recorded, four projects, three tags and two waiting suggestions.
#pragma once

#include "base/Calendar.h"
#include "storage/Repository.h"

namespace kestu::test {

[[nodiscard]] inline Calendar tokyo() {
    return {.zone = QTimeZone("Asia/Tokyo"), .firstWeekday = Qt::Sunday};
}

/// 2026-11-18 00:00 in Tokyo.
inline constexpr Instant sampleDay = instantAt(1'794'927'600);

/// A time of the sample day.
[[nodiscard]] constexpr Instant sampleTime(int hour, int minute) {
    return sampleDay + Seconds{hour * 3600.0 + minute * 60.0};
}

inline constexpr Instant sampleNow = sampleTime(18, 44);

namespace sample {

enum Labels : unsigned { none = 0, customer = 1, focus = 2, meeting = 4 }; // the tags

struct Span {
    int fromHour;
    int fromMinute;
    int toHour;
    int toMinute;
    const char16_t* app; // null: an entry made by hand
    const char16_t* title;
    int project;   // position in the list of projects, from 1; 0: none, or given by a rule
    unsigned tags; // set by hand
};

inline constexpr char16_t meetingNotes[] = u"議事録 2026-11-18 A社 週次定例 - Google ドキュメント";

inline constexpr Span spans[] = {
    {8, 52, 9, 7, u"メール", u"受信トレイ（12件の未読）", 0, none},
    {9, 7, 9, 15, u"Firefox", u"課題一覧 - A社ポータル", 1, customer},
    {9, 15, 9, 41, u"エディタ", u"注文API.cpp", 1, customer | focus},
    {9, 41, 9, 44, u"メール", u"Re: 見積書の件（山田商会）", 0, none},
    {9, 44, 10, 24, u"エディタ", u"注文API.cpp", 1, customer | focus},
    {10, 32, 11, 28, u"Firefox", u"A社 見積り", 1, customer | meeting},
    {11, 28, 11, 32, u"メール", u"受信トレイ", 0, none},
    {11, 32, 11, 56, u"Firefox", meetingNotes, 0, focus},
    {11, 56, 12, 4, u"Slack", u"雑談", 0, none},
    {13, 1, 13, 14, u"Slack", u"雑談", 0, none},
    {13, 14, 13, 52, u"表計算", u"請求書 10月分.ods", 3, none},
    {14, 0, 15, 5, nullptr, u"A社と打ち合わせ", 1, customer | meeting},
    {15, 18, 15, 52, u"エディタ", u"kestu/Timeline.cpp", 2, focus},
    {15, 52, 16, 23, u"Firefox", u"Qt の描画を読む", 4, none},
    {16, 23, 18, 9, u"エディタ", u"kestu/HourRow.cpp", 2, focus},
    {18, 9, 18, 44, u"メール", u"作成：11月分の作業報告（A社） — 下書きを保存しました", 0, none},
};

} // namespace sample

inline constexpr char16_t sampleNote[] =
    u"**A社案件が3時間39分で最も長い日。**午前は実装と定例、午後は対面の打ち合わせ。\n"
    u"15時からは **KESTU開発** に2時間20分。帯の描画を見直し、PR #42 を出した。\n"
    u"気づき：打ち合わせの前後に8〜13分の空きが3回。移動の時間なら登録しておくと、請求に漏れが出ない。";

inline void writeSampleCategories(Repository& repository) {
    using namespace Qt::StringLiterals;
    for (const auto& [name, color] : {std::pair(u"A社案件"_s, u"#4F7CF7"_s),
                                      {u"KESTU開発"_s, u"#F2994A"_s},
                                      {u"請求・経理"_s, u"#27AE60"_s},
                                      {u"学習"_s, u"#9B51E0"_s}}) {
        repository.insertCategory(CategoryKind::project, name, color);
    }
    for (const auto& [name, color] :
         {std::pair(u"顧客A"_s, u"#EB5757"_s), {u"集中"_s, u"#F2C94C"_s}, {u"会議"_s, u"#2D9CDB"_s}}) {
        repository.insertCategory(CategoryKind::tag, name, color);
    }
    for (const CategoryKind kind : {CategoryKind::project, CategoryKind::tag}) {
        repository.insertRule({.kind = kind, .id = 1}, RuleField::domain, RuleOperator::equals,
                              u"docs.google.com"_s);
    }
}

/// Returns the row's id.
inline ActivityId writeSampleSpan(Repository& repository, const sample::Span& span) {
    using namespace Qt::StringLiterals;
    const Instant start = sampleTime(span.fromHour, span.fromMinute);
    const Instant end = sampleTime(span.toHour, span.toMinute);
    const QString title = QString::fromUtf16(span.title);
    if (!span.app) {
        return repository.insertManualEntry(
            {.start = start, .end = end, .title = title, .projectId = {}, .tagIds = {}});
    }
    const QString app = QString::fromUtf16(span.app);
    const bool isDocument = span.title == sample::meetingNotes;
    const auto id = repository.insertActivity(
        {.bundleId = u"jp.example."_s + app,
         .appName = app,
         .title = title,
         .url = isDocument ? std::optional(u"https://docs.google.com/document/d/1kQ7w-r8ZsT3/edit"_s)
                           : std::nullopt},
        start);
    repository.extendActivity(id, end);
    return id;
}

/// Fills an empty store with the sample day.
inline void writeSampleDay(Repository& repository) {
    using namespace Qt::StringLiterals;
    writeSampleCategories(repository);
    for (const sample::Span& span : sample::spans) {
        const ActivityId id = writeSampleSpan(repository, span);
        if (span.project > 0) {
            repository.setProject(std::span(&id, 1), span.project);
        }
        for (const unsigned tag : {0U, 1U, 2U}) {
            if ((span.tags >> tag & 1U) != 0) {
                repository.database().run(u"INSERT INTO activity_tag VALUES (?, ?)"_s, {id, tag + 1});
            }
        }
    }
    repository.database().run(u"INSERT INTO daily_note (day, summary, author, updated_at) VALUES "
                              "('2026-11-18', ?, 'ai', 0)"_s,
                              {QString::fromUtf16(sampleNote)});
    for (const QString& value : {u"redmine.a-sha.example.jp"_s, u"メール"_s}) {
        repository.database().run(u"INSERT INTO rule_suggestion (target_kind, target_name, field, op, value, "
                                  "created_at) VALUES ('project', 'A社案件', 'app', 'equals', ?, 0)"_s,
                                  {value});
    }
}

inline void fillSampleDay(Repository& repository) {
    repository.database().transaction([&] { writeSampleDay(repository); });
}

/// The week before the sample day: Monday, 9 November to Sunday, 15 November, without the Saturday.
inline void fillSampleWeek(Repository& repository) {
    using namespace Qt::StringLiterals;
    constexpr double hours[][4] = {{4.6, 1.6, 0.6, 0}, {3.2, 2.9, 0, 0.4}, {5.0, 0.7, 0, 0.3},
                                   {2.8, 3.3, 1.2, 0}, {3.6, 0.9, 0, 2.1}, {},
                                   {0, 1.2, 1.8, 0}}; // by project: A社案件, KESTU開発, 学習, 請求・経理
    constexpr ProjectId projects[] = {1, 2, 4, 3};
    const QString apps[] = {u"Firefox"_s, u"エディタ"_s, u"ターミナル"_s, u"表計算"_s};
    repository.database().transaction([&] {
        for (int day = 0; day < 7; ++day) {
            Instant start = sampleDay + Seconds{(day - 9) * 86400.0 + 9 * 3600};
            for (std::size_t part = 0; part < 4; ++part) {
                const Seconds length{hours[day][part] * 3600};
                if (length > Seconds{0}) {
                    const auto id = repository.insertActivity(
                        {.bundleId = u"jp.example."_s + apps[part],
                         .appName = apps[part],
                         .title = u"作業"_s,
                         .url = part == 0 ? std::optional(u"https://github.com/"_s) : std::nullopt},
                        start);
                    repository.extendActivity(id, start + length);
                    repository.setProject(std::span(&id, 1), projects[part]);
                    start += length;
                }
            }
        }
    });
}

} // namespace kestu::test
