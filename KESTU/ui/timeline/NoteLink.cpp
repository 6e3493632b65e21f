// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/NoteLink.h"

#include <algorithm>

namespace kestu {
namespace {

constexpr int deepestNesting = 32; // of parentheses, which keeps the reading of hostile texts short

bool isBlank(QChar sign) {
    return sign == u' ' || sign == u'\t' || sign == u'\n';
}

QString unescaped(QStringView text) {
    QString plain;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const bool escapes = text[at] == u'\\' && at + 1 < text.size() && isAsciiPunctuation(text[at + 1]);
        plain += text[escapes ? ++at : at];
    }
    return plain;
}

/// Goes through the parenthesis; each step tells whether what it expects is there.
class TargetReader final {
public:
    TargetReader(QStringView text, qsizetype at)
        : m_text(text)
        , m_at(at) {}

    [[nodiscard]] std::optional<NoteAddress> read() {
        if (!skip(u'(')) {
            return std::nullopt;
        }
        skipBlanks();
        if (!(sign() == u'<' ? readBracketed() : readBare())) {
            return std::nullopt;
        }
        const bool spaced = skipBlanks();
        if ((spaced && !readTitle()) || !skip(u')')) {
            return std::nullopt;
        }
        return NoteAddress{.address = m_address, .end = m_at};
    }

private:
    [[nodiscard]] QChar sign() const { return m_at < m_text.size() ? m_text[m_at] : QChar(); }

    bool skip(QChar wanted) {
        const bool found = m_at < m_text.size() && m_text[m_at] == wanted;
        m_at += found ? 1 : 0;
        return found;
    }

    bool skipBlanks() {
        const qsizetype before = m_at;
        while (isBlank(sign())) {
            ++m_at;
        }
        return m_at > before;
    }

    void step() {
        const bool escapes = sign() == u'\\' && m_at + 1 < m_text.size();
        m_at += escapes ? 2 : 1;
    }

    bool readBracketed() {
        const qsizetype start = ++m_at;
        while (m_at < m_text.size() && sign() != u'>') {
            if (sign() == u'<' || sign() == u'\n') {
                return false;
            }
            step();
        }
        m_at = std::min(m_at, m_text.size());
        m_address = unescaped(m_text.sliced(start, m_at - start));
        return skip(u'>');
    }

    bool readBare() {
        const qsizetype start = m_at;
        int depth = 0;
        for (; m_at < m_text.size() && !sign().isSpace() && sign() >= u' '; step()) {
            depth += sign() == u'(' ? 1 : 0;
            depth -= sign() == u')' ? 1 : 0;
            if (depth < 0 || depth > deepestNesting) {
                break;
            }
        }
        m_at = std::min(m_at, m_text.size());
        m_address = unescaped(m_text.sliced(start, m_at - start));
        return depth <= 0;
    }

    /// What it says is not shown. There need be none.
    bool readTitle() {
        const QChar open = sign();
        if (open != u'"' && open != u'\'' && open != u'(') {
            return true;
        }
        const QChar close = open == u'(' ? u')' : open;
        ++m_at;
        while (m_at < m_text.size() && sign() != close && (open != u'(' || sign() != open)) {
            step();
        }
        const bool closed = skip(close);
        skipBlanks();
        return closed;
    }

    QStringView m_text;
    qsizetype m_at;
    QString m_address;
};

} // namespace

bool isAsciiPunctuation(QChar sign) {
    const char16_t code = sign.unicode();
    return code > 0x20 && code < 0x7F && !sign.isLetterOrNumber();
}

std::optional<NoteAddress> linkTarget(QStringView text, qsizetype at) {
    return TargetReader(text, at).read();
}

std::optional<NoteAddress> bracketedAddress(QStringView text, qsizetype at) {
    qsizetype end = at + 1;
    while (end < text.size() && text[end] != u'>' && text[end] != u'<' && !text[end].isSpace()) {
        ++end;
    }
    if (end >= text.size() || text[end] != u'>') {
        return std::nullopt;
    }
    const QStringView address = text.sliced(at + 1, end - at - 1);
    for (const QStringView scheme : {u"https://", u"http://", u"mailto:"}) {
        if (address.startsWith(scheme, Qt::CaseInsensitive) && address.size() > scheme.size()) {
            return NoteAddress{.address = address.toString(), .end = end + 1};
        }
    }
    return std::nullopt;
}

} // namespace kestu
