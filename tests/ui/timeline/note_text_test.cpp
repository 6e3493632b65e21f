// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/NoteText.h"

#include <gtest/gtest.h>

#include <ctime>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

/// Each span in brackets of its look: b bold, i italic, c code, @address for a link.
std::string looksOf(const QString& note) {
    QString looks;
    for (const NoteSpan& span : noteSpans(note)) {
        const QString look = QString(span.bold ? u"b"_s : u""_s) + (span.italic ? u"i"_s : u""_s) +
                             (span.code ? u"c"_s : u""_s) +
                             (span.link.isEmpty() ? QString() : u"@"_s + span.link);
        looks += look.isEmpty() ? span.text : u"{%1|%2}"_s.arg(look, span.text);
    }
    return looks.toStdString();
}

TEST(NoteText, HeadingsLoseTheirMarks) {
    const std::pair<QString, QString> cases[] = {
        {u"## 午前 \n本文"_s, u"午前\n本文"_s},
        {u"#42 を直した\n # 字下げ "_s, u"42 を直した\n # 字下げ "_s},
        {u"a\r\n#\u3000b\rc"_s, u"a\nb\nc"_s},
        {u"###\n\n"_s, u"\n\n"_s},
        {u""_s, u""_s}};
    for (const auto& [summary, expected] : cases) {
        EXPECT_EQ(plainHeadings(summary), expected) << summary.toStdString();
    }
}

TEST(NoteText, KnowsWhatStandsWithinALine) {
    const std::pair<QString, std::string> cases[] = {
        // bold and italics
        {u"**a** __b__ *c* _d_ ***e***"_s, "{b|a} {b|b} {i|c} {i|d} {bi|e}"},
        {u"**a *b* c** *d **e***"_s, "{b|a }{bi|b}{b| c} {i|d }{bi|e}"},
        {u"**二行に\nわたる**"_s, "{b|二行に\nわたる}"},
        {u"**A社が最も長い日。**午前は実装"_s, "{b|A社が最も長い日。}午前は実装"},
        {u"今日は**「A社」**の*日*です"_s, "今日は{b|「A社」}の{i|日}です"},
        {u"達成率は**100%**でした"_s, "達成率は{b|100%}でした"},
        // what has no partner
        {u"**a"_s, "**a"},
        {u"a** b * c *"_s, "a** b * c *"},
        {u"* 一つ\n* 二つ"_s, "* 一つ\n* 二つ"},
        {u"**a*"_s, "*{i|a}"},
        {u"*a _b* c_"_s, "{i|a _b} c_"},
        {u"*foo**bar*"_s, "{i|foo**bar}"},
        {u"save_daily_summary と 前_後_"_s, "save_daily_summary と 前_後_"},
        // code and escapes
        {u"`a*b*` `` ` `` `"_s, "{c|a*b*} {c|`} `"},
        {u"**a `b** c`"_s, "**a {c|b** c}"},
        {u"\\*a\\* \\a C:\\x \\"_s, "*a* \\a C:\\x \\"},
        // links
        {u"[KESTU](https://a.jp/x_(y)) を"_s, "{@https://a.jp/x_(y)|KESTU} を"},
        {u"[**a** b](<http://a b> \"題\")"_s, "{b@http://a b|a}{@http://a b| b}"},
        {u"<https://a.jp/?a=1_b_> <b>x</b>"_s, "{@https://a.jp/?a=1_b_|https://a.jp/?a=1_b_} <b>x</b>"},
        {u"[a] [b](c d) [](e) ](f) [g](h"_s, "[a] [b](c d) [](e) ](f) [g](h"},
        {u"[a [b](c) d](e)"_s, "[a {@c|b} d](e)"},
        {u"*a [b* c](d)*"_s, "{i|a }{i@d|b* c}"},
        {u"![図](file:///x) [![印](y)](z)"_s, "図 {@z|印}"},
        // what Markdown would take for blocks, and white space
        {u"- a\n\n    b  \n> c\t1. d"_s, "- a\n\n    b  \n> c\t1. d"},
        {u""_s, ""}};
    for (const auto& [note, expected] : cases) {
        EXPECT_EQ(looksOf(note), expected) << note.toStdString();
    }
}

/// 100 KB each: reading them must not take a square of their length.
TEST(NoteText, ReadsHostileTextsQuickly) {
    for (const QString& part : {u"*"_s, u"["_s, u"`"_s, u"*a "_s, u"a* "_s, u"*a_b "_s, u"[a]("_s, u"](<"_s,
                                u"[a](b"_s, u"![a "_s, u"[a](b \""_s, u"**a*b "_s, u"<a:"_s, u"`a``"_s}) {
        const QString text = part.repeated(100'000 / part.size());
        const std::clock_t start = std::clock(); // of this process, whatever else the machine does
        qsizetype length = 0;
        for (const NoteSpan& span : noteSpans(text)) {
            length += span.text.size();
        }
        EXPECT_GT(length, 0);
        EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC) << part.toStdString();
    }
}

} // namespace
} // namespace kestu
