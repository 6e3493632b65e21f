// SPDX-License-Identifier: GPL-3.0-or-later
//
// Finds what runs of "*" and "_" in a note belong together, by the rules of CommonMark with one addition:
// next to Japanese, Chinese or Korean text, which has no blanks between words, a mark may also stand beside
// punctuation. Belongs to the parser of NoteText, whose pieces it marks.
#pragma once

#include <QHash>
#include <QString>

#include <array>
#include <vector>

namespace kestu {

/// How many of each begin behind a piece, and end before it.
struct StarMarks {
    int bold = 0;
    int italic = 0;
    int boldEnds = 0;
    int italicEnds = 0;
};

/// A part of a note; its text is shown as it stands.
struct NotePiece {
    QString text;
    StarMarks stars;
    bool code = false;
    QString opensLink; // the link that begins behind it
    bool closesLink = false;
};

using StarIndex = int;
inline constexpr StarIndex noStar = -1;

/// How often the sign at `at` is repeated there.
[[nodiscard]] qsizetype runLength(QStringView text, qsizetype at);

class NoteStars final {
public:
    explicit NoteStars(std::vector<NotePiece>& pieces)
        : m_pieces(pieces) {}

    /// The run at `at`, which is the text of that piece.
    void add(QStringView text, qsizetype at, std::size_t piece);
    /// The last run that still waits.
    [[nodiscard]] StarIndex top() const { return m_top; }
    /// Joins what waits above `below`, and forgets it.
    void match(StarIndex below);

private:
    struct Run {
        std::size_t piece;
        QChar sign;
        int length;
        int left; // not used yet
        bool opens;
        bool closes;
        StarIndex previous;
        StarIndex next;
    };
    /// By the kind of the closing run: below these there is nothing for it, which keeps the search short.
    using Bottoms = std::array<StarIndex, 12>;

    [[nodiscard]] Run& at(StarIndex index) { return m_runs[static_cast<std::size_t>(index)]; }
    [[nodiscard]] StarIndex openerOf(StarIndex closer, StarIndex below);
    void join(StarIndex opener, StarIndex closer);
    void remove(StarIndex index);
    [[nodiscard]] static std::size_t kindOf(const Run& closer);

    std::vector<NotePiece>& m_pieces;
    std::vector<Run> m_runs;
    StarIndex m_top = noStar;
};

} // namespace kestu
