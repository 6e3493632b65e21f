// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/X11Text.h"

#include <glib.h>

#include <QList>

#include <memory>

namespace kestu {
namespace {

// Compound text switches between character sets by escape sequences (ISO 2022 in eight bits). The left half
// begins as ASCII, the right half as Latin-1. Known here: ASCII, Latin-1, JIS X 0201 and JIS X 0208, which is
// what Japanese programs without a UTF-8 title send, and the UTF-8 segments of newer libraries.
enum class CharacterSet { ascii, latin1, jisRoman, jisKatakana, jisKanji };

std::optional<QString> fromEucJp(const QByteArray& bytes) {
    gsize written = 0;
    const std::unique_ptr<gchar, decltype(&g_free)> utf8(
        g_convert(bytes.constData(), bytes.size(), "UTF-8", "EUC-JP", nullptr, &written, nullptr), g_free);
    if (!utf8) {
        return std::nullopt;
    }
    return QString::fromUtf8(utf8.get(), static_cast<qsizetype>(written));
}

std::optional<QString> decoded(CharacterSet set, const QByteArray& run) {
    if (set == CharacterSet::ascii || set == CharacterSet::jisRoman || set == CharacterSet::latin1) {
        return QString::fromLatin1(run);
    }
    // Both Japanese sets are part of EUC-JP, with the high bit set and katakana behind a shift byte.
    QByteArray euc;
    for (const char byte : run) {
        if (set == CharacterSet::jisKatakana) {
            euc.append('\x8e');
        }
        euc.append(static_cast<char>(static_cast<unsigned char>(byte) | 0x80U));
    }
    return fromEucJp(euc);
}

struct Escape {
    QByteArrayView sequence;
    bool isRightHalf;
    CharacterSet set;
};

constexpr QByteArrayView utf8Begin("\x1b%G", 3);
constexpr QByteArrayView utf8End("\x1b%@", 3);

const Escape escapes[] = {
    {"\x1b(B", false, CharacterSet::ascii},       {"\x1b(J", false, CharacterSet::jisRoman},
    {"\x1b-A", true, CharacterSet::latin1},       {"\x1b)I", true, CharacterSet::jisKatakana},
    {"\x1b(I", false, CharacterSet::jisKatakana}, {"\x1b$(B", false, CharacterSet::jisKanji},
    {"\x1b$)B", true, CharacterSet::jisKanji},
};

class CompoundTextDecoder final {
public:
    std::optional<QString> decode(QByteArrayView rest) {
        while (!rest.isEmpty()) {
            const qsizetype taken = rest.startsWith('\x1b') ? takeEscape(rest) : takeRun(rest);
            if (taken == 0) {
                return std::nullopt;
            }
            rest = rest.sliced(taken);
        }
        return m_text;
    }

private:
    /// How many bytes were understood; 0 for none.
    qsizetype takeEscape(QByteArrayView rest) {
        if (rest.startsWith(utf8Begin)) {
            const qsizetype end = rest.indexOf(utf8End);
            const qsizetype last = end < 0 ? rest.size() : end;
            m_text += QString::fromUtf8(rest.sliced(3, last - 3));
            return end < 0 ? last : last + utf8End.size();
        }
        for (const Escape& escape : escapes) {
            if (rest.startsWith(escape.sequence)) {
                (escape.isRightHalf ? m_right : m_left) = escape.set;
                return escape.sequence.size();
            }
        }
        return 0;
    }

    qsizetype takeRun(QByteArrayView rest) {
        const auto isRight = [](char byte) { return (static_cast<unsigned char>(byte) & 0x80U) != 0; };
        const bool right = isRight(rest.front());
        qsizetype size = 0;
        while (size < rest.size() && rest[size] != '\x1b' && isRight(rest[size]) == right) {
            ++size;
        }
        const auto text = decoded(right ? m_right : m_left, rest.first(size).toByteArray());
        if (!text) {
            return 0;
        }
        m_text += *text;
        return size;
    }

    CharacterSet m_left = CharacterSet::ascii;
    CharacterSet m_right = CharacterSet::latin1;
    QString m_text;
};

} // namespace

std::optional<QString> decodedX11Text(const QByteArray& bytes, X11Encoding encoding) {
    const QByteArray first = bytes.split('\0').constFirst();
    switch (encoding) {
    case X11Encoding::utf8:
        return QString::fromUtf8(first);
    case X11Encoding::latin1:
        return QString::fromLatin1(first);
    case X11Encoding::compoundText:
        return CompoundTextDecoder().decode(first);
    }
    return std::nullopt;
}

} // namespace kestu
