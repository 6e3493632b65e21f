// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/NoteStars.h"

#include <algorithm>

namespace kestu {
namespace {

bool isEastAsian(char32_t code) {
    const bool isWideForm =
        (code >= 0x3000 && code <= 0x303F) || (code >= 0xFF00 && code <= 0xFFEF) || code == 0x30FC;
    switch (QChar::script(code)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Bopomofo:
    case QChar::Script_Hangul:
        return true;
    default:
        return isWideForm;
    }
}

/// What stands beside a run; the ends of the text count as blanks.
struct Neighbour {
    bool blank;
    bool punctuation;
    bool eastAsian;
};

Neighbour neighbour(QStringView text, qsizetype at) {
    if (at < 0 || at >= text.size()) {
        return {.blank = true, .punctuation = false, .eastAsian = false};
    }
    char32_t code = text[at].unicode();
    if (text[at].isLowSurrogate() && at > 0) {
        code = QChar::surrogateToUcs4(text[at - 1], text[at]);
    } else if (text[at].isHighSurrogate() && at + 1 < text.size()) {
        code = QChar::surrogateToUcs4(text[at], text[at + 1]);
    }
    return {.blank = QChar::isSpace(code),
            .punctuation = QChar::isPunct(code) || QChar::isSymbol(code),
            .eastAsian = isEastAsian(code)};
}

/// Whether a run can stand at the edge of a marked text that has `inner` in it and `outer` outside.
bool isEdge(const Neighbour& inner, const Neighbour& outer) {
    return !inner.blank && (!inner.punctuation || outer.blank || outer.punctuation || outer.eastAsian);
}

} // namespace

qsizetype runLength(QStringView text, qsizetype at) {
    qsizetype end = at;
    while (end < text.size() && text[end] == text[at]) {
        ++end;
    }
    return end - at;
}

void NoteStars::add(QStringView text, qsizetype at, std::size_t piece) {
    const auto length = static_cast<int>(runLength(text, at));
    const Neighbour before = neighbour(text, at - 1);
    const Neighbour after = neighbour(text, at + length);
    const bool left = isEdge(after, before);
    const bool right = isEdge(before, after);
    const bool isStar = text[at] == u'*'; // an underscore within a word is part of it
    const auto index = static_cast<StarIndex>(m_runs.size());
    m_runs.push_back({.piece = piece,
                      .sign = text[at],
                      .length = length,
                      .left = length,
                      .opens = left && (isStar || !right || before.punctuation),
                      .closes = right && (isStar || !left || after.punctuation),
                      .previous = m_top,
                      .next = noStar});
    if (m_top != noStar) {
        this->at(m_top).next = index;
    }
    m_top = index;
}

std::size_t NoteStars::kindOf(const Run& closer) {
    const int kind = (closer.sign == u'*' ? 0 : 6) + (closer.opens ? 3 : 0) + closer.length % 3;
    return static_cast<std::size_t>(kind);
}

/// A run that could do both is not joined with one when their lengths add up to a multiple of three, unless
/// both are multiples themselves: "*a**b*" holds no pair of single stars from its middle.
StarIndex NoteStars::openerOf(StarIndex closer, StarIndex below) {
    const Run& end = at(closer);
    StarIndex index = end.previous;
    for (; index > below; index = at(index).previous) {
        const Run& start = at(index);
        const bool isOdd = (start.closes || end.opens) && (start.length + end.length) % 3 == 0 &&
                           (start.length % 3 != 0 || end.length % 3 != 0);
        if (start.opens && start.sign == end.sign && !isOdd) {
            return index;
        }
    }
    return noStar;
}

void NoteStars::join(StarIndex opener, StarIndex closer) {
    Run& start = at(opener);
    Run& end = at(closer);
    const bool isBold = start.left >= 2 && end.left >= 2;
    const int used = isBold ? 2 : 1;
    StarMarks& begins = m_pieces[start.piece].stars;
    StarMarks& ends = m_pieces[end.piece].stars;
    (isBold ? begins.bold : begins.italic) += 1;
    (isBold ? ends.boldEnds : ends.italicEnds) += 1;
    start.left -= used;
    end.left -= used;
    m_pieces[start.piece].text.chop(used);
    m_pieces[end.piece].text.chop(used);
    start.next = closer; // what waits between them has no partner
    end.previous = opener;
}

void NoteStars::remove(StarIndex index) {
    const Run& gone = at(index);
    if (gone.previous != noStar) {
        at(gone.previous).next = gone.next;
    }
    if (gone.next != noStar) {
        at(gone.next).previous = gone.previous;
    } else {
        m_top = gone.previous;
    }
}

void NoteStars::match(StarIndex below) {
    Bottoms bottoms;
    bottoms.fill(below);
    StarIndex index = m_top;
    while (index > below && at(index).previous > below) {
        index = at(index).previous;
    }
    while (index > below) {
        const StarIndex next = at(index).next;
        StarIndex& bottom = bottoms[kindOf(at(index))];
        const StarIndex opener = at(index).closes ? openerOf(index, bottom) : noStar;
        if (opener == noStar) {
            if (at(index).closes) {
                bottom = at(index).previous;
                if (!at(index).opens) {
                    remove(index);
                }
            }
            index = next;
            continue;
        }
        join(opener, index);
        if (at(opener).left == 0) {
            remove(opener);
        }
        if (at(index).left == 0) {
            remove(index);
            index = next;
        }
    }
    m_top = below;
    if (below != noStar) {
        at(below).next = noStar;
    }
}

} // namespace kestu
