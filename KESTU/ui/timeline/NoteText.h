// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the text of a day's note is read: headings lose their marks, and of Markdown only what stands within a
// line is known (bold, italics, code, links). White space stays, HTML is text like any other, an image is its
// description, and what does not fit together is shown as it stands. Pure functions over texts.
#pragma once

#include <QString>

#include <vector>

namespace kestu {

/// A piece of a note in one look.
struct NoteSpan {
    QString text;
    bool bold = false;
    bool italic = false;
    bool code = false;
    QString link; // the address as it is written; empty: none

    [[nodiscard]] bool operator==(const NoteSpan&) const = default;
};

/// The lines of `summary`; of one that begins with "#" only what follows these signs and blanks.
[[nodiscard]] QString plainHeadings(const QString& summary);

/// Never two of the same look in a row. Takes time in proportion to the length of any text.
[[nodiscard]] std::vector<NoteSpan> noteSpans(const QString& text);

} // namespace kestu
