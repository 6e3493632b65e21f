// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/NoteText.h"

#include "base/Text.h"
#include "ui/timeline/NoteLink.h"
#include "ui/timeline/NoteStars.h"

#include <QHash>
#include <QStringList>

#include <algorithm>

namespace kestu {
namespace {

/// Where runs of backticks stand, so that each search for the end of code goes on where the last one ended.
class Backticks final {
public:
    explicit Backticks(QStringView text) {
        for (qsizetype at = 0; at < text.size(); ++at) {
            if (text[at] == u'`') {
                const qsizetype length = runLength(text, at);
                m_runs[length].starts.push_back(at);
                at += length - 1;
            }
        }
    }

    /// The next run of this length from `from` on; -1 when there is none. `from` never goes back.
    [[nodiscard]] qsizetype next(qsizetype length, qsizetype from) {
        Runs& runs = m_runs[length];
        while (runs.next < runs.starts.size() && runs.starts[runs.next] < from) {
            ++runs.next;
        }
        return runs.next < runs.starts.size() ? runs.starts[runs.next] : -1;
    }

private:
    struct Runs {
        std::vector<qsizetype> starts;
        std::size_t next = 0;
    };
    QHash<qsizetype, Runs> m_runs;
};

/// "[" or "![" that waits for its end.
struct OpenBracket {
    std::size_t piece;
    qsizetype textStart;
    bool isImage;
    StarIndex starBelow;
};

class Parser final {
public:
    explicit Parser(QStringView text)
        : m_text(text)
        , m_backticks(text)
        , m_stars(m_pieces) {}

    [[nodiscard]] std::vector<NoteSpan> spans() {
        while (m_at < m_text.size()) {
            readOne();
        }
        m_stars.match(noStar);
        return joined();
    }

private:
    void readOne() {
        const QChar sign = m_text[m_at];
        if (sign == u'\\') {
            readEscape();
        } else if (sign == u'`') {
            readCode();
        } else if (sign == u'*' || sign == u'_') {
            readStars();
        } else if (sign == u'[') {
            openBracket(false);
        } else if (sign == u'!' && m_text.sliced(m_at).startsWith(u"![")) {
            openBracket(true);
        } else if (sign == u']') {
            closeBracket();
        } else if (sign == u'<') {
            readBracketedAddress();
        } else {
            literal(1);
        }
    }

    NotePiece& addPiece(const QString& text) {
        m_pieces.push_back({.text = text, .stars = {}, .code = false, .opensLink = {}, .closesLink = false});
        m_isOpenText = false;
        return m_pieces.back();
    }

    void literal(qsizetype length) {
        const QStringView text = m_text.sliced(m_at, length);
        if (!m_isOpenText) {
            addPiece({});
        }
        m_pieces.back().text += text;
        m_isOpenText = true;
        m_at += length;
    }

    /// Before a line break it stands for that break alone.
    void readEscape() {
        const bool isLast = m_at + 1 >= m_text.size();
        if (isLast || (!isAsciiPunctuation(m_text[m_at + 1]) && m_text[m_at + 1] != u'\n')) {
            literal(1);
            return;
        }
        ++m_at;
        literal(1);
    }

    void readCode() {
        const qsizetype length = runLength(m_text, m_at);
        const qsizetype start = m_at + length;
        const qsizetype end = m_backticks.next(length, start);
        if (end < 0) {
            literal(length);
            return;
        }
        QStringView code = m_text.sliced(start, end - start);
        const bool padded = code.size() > 2 && code.startsWith(u' ') && code.endsWith(u' ');
        if (padded && !code.trimmed().isEmpty()) { // which lets code begin with a backtick
            code = code.sliced(1, code.size() - 2);
        }
        addPiece(code.toString()).code = true;
        m_at = end + length;
    }

    void readStars() {
        const qsizetype length = runLength(m_text, m_at);
        addPiece(m_text.sliced(m_at, length).toString());
        m_stars.add(m_text, m_at, m_pieces.size() - 1);
        m_at += length;
    }

    void openBracket(bool isImage) {
        const qsizetype length = isImage ? 2 : 1;
        addPiece(m_text.sliced(m_at, length).toString());
        m_at += length;
        m_brackets.push_back({.piece = m_pieces.size() - 1,
                              .textStart = m_at,
                              .isImage = isImage,
                              .starBelow = m_stars.top()});
    }

    void closeBracket() {
        if (m_brackets.empty()) {
            literal(1);
            return;
        }
        const OpenBracket opener = m_brackets.back();
        m_brackets.pop_back();
        const auto target = linkTarget(m_text, m_at + 1);
        if (!target || m_at == opener.textStart) {
            literal(1);
            return;
        }
        m_stars.match(opener.starBelow);
        m_pieces[opener.piece].text.clear();
        addPiece({});
        m_at = target->end;
        if (!opener.isImage) {
            m_pieces[opener.piece].opensLink = target->address;
            m_pieces.back().closesLink = true;
            m_brackets.clear(); // a link holds no link
        }
    }

    void readBracketedAddress() {
        const auto found = bracketedAddress(m_text, m_at);
        if (!found) {
            literal(1);
            return;
        }
        addPiece({}).opensLink = found->address;
        addPiece(found->address);
        addPiece({}).closesLink = true;
        m_at = found->end;
    }

    [[nodiscard]] std::vector<NoteSpan> joined() const {
        std::vector<NoteSpan> spans;
        StarMarks open; // how many are in effect
        QString link;
        for (const NotePiece& piece : m_pieces) {
            open.bold -= piece.stars.boldEnds;
            open.italic -= piece.stars.italicEnds;
            link = piece.closesLink ? QString() : link;
            append(spans, {.text = piece.text,
                           .bold = open.bold > 0,
                           .italic = open.italic > 0,
                           .code = piece.code,
                           .link = link});
            open.bold += piece.stars.bold;
            open.italic += piece.stars.italic;
            link = piece.opensLink.isEmpty() ? link : piece.opensLink;
        }
        return spans;
    }

    static void append(std::vector<NoteSpan>& spans, NoteSpan span) {
        if (span.text.isEmpty()) {
            return;
        }
        if (!spans.empty()) {
            NoteSpan& last = spans.back();
            if (last.bold == span.bold && last.italic == span.italic && last.code == span.code &&
                last.link == span.link) {
                last.text += span.text;
                return;
            }
        }
        spans.push_back(std::move(span));
    }

    QStringView m_text;
    qsizetype m_at = 0;
    bool m_isOpenText = false; // the last piece takes further text
    std::vector<NotePiece> m_pieces;
    std::vector<OpenBracket> m_brackets;
    Backticks m_backticks;
    NoteStars m_stars;
};

} // namespace

QString plainHeadings(const QString& summary) {
    QString text = summary;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    QStringList lines = text.split(u'\n');
    for (QString& line : lines) {
        const auto* const end =
            std::find_if_not(line.cbegin(), line.cend(), [](QChar sign) { return sign == u'#'; });
        if (end != line.cbegin()) {
            line = trimmedWhiteSpace(line.mid(end - line.cbegin()));
        }
    }
    return lines.join(u'\n');
}

std::vector<NoteSpan> noteSpans(const QString& text) {
    return Parser(text).spans();
}

} // namespace kestu
