// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/X11Text.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

TEST(X11Text, DecodesWhatProgramsSetAndDropsWhatItCannotRead) {
    const struct {
        const char* name;
        QByteArray bytes;
        X11Encoding encoding;
        std::optional<QString> text;
    } rows[] = {
        {"utf-8", "日本語 – a", X11Encoding::utf8, u"日本語 – a"_s},
        {"broken utf-8", "a\xe3\x81", X11Encoding::utf8, u"a\uFFFD\uFFFD"_s},
        {"first of a list", QByteArray("one\0two", 7), X11Encoding::utf8, u"one"_s},
        {"right-to-left mark", "\u200Fשלום", X11Encoding::utf8, u"\u200Fשלום"_s},
        {"latin-1", "caf\xe9", X11Encoding::latin1, u"café"_s},
        {"compound latin-1", "caf\xe9", X11Encoding::compoundText, u"café"_s},
        // What Xlib makes of "a日本b" and of "ｱ日" in its own encoding.
        {"compound kanji left", "a\x1b$(BF|K\\\x1b(Bb", X11Encoding::compoundText, u"a日本b"_s},
        {"compound kanji right", "\x1b$)B\xc6\xfc\xcb\xdc", X11Encoding::compoundText, u"日本"_s},
        {"compound katakana", "\x1b)I\xb1\x1b$(BF|", X11Encoding::compoundText, u"ｱ日"_s},
        {"compound utf-8", "a\x1b%G\xe2\x82\xac\x1b%@b", X11Encoding::compoundText, u"a€b"_s},
        {"compound chinese", "\x1b$(A0!", X11Encoding::compoundText, std::nullopt},
        {"half a kanji", "\x1b$(BF", X11Encoding::compoundText, std::nullopt},
        {"empty", "", X11Encoding::compoundText, QString()},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decodedX11Text(row.bytes, row.encoding), row.text) << row.name;
    }
}

} // namespace
} // namespace kestu
