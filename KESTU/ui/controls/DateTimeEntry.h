// SPDX-License-Identifier: GPL-3.0-or-later
//
// What typing, stepping and pasting make of a date with hour and minute: the mind of DateTimeField, without a
// window. What is half-typed holds once its section is full or left; what cannot be is kept as it was typed,
// with a complaint, and the time that held before goes on to hold. Plain values.
#pragma once

#include <QDate>
#include <QString>
#include <QTime>

#include <array>
#include <functional>
#include <optional>
#include <utility>

namespace kestu {

/// A time on the wall, without a zone.
struct WallTime {
    QDate date;
    QTime time;

    bool operator==(const WallTime&) const = default;
};

class DateTimeEntry final {
public:
    enum class Section { year, month, day, hour, minute };
    using Parts = std::array<int, 5>; // by section
    /// Why a time that the calendar knows cannot be meant; empty when it can.
    using Objection = std::function<QString(const WallTime&)>;

    void setObjection(Objection objection) { m_objection = std::move(objection); }
    /// What holds from now on; forgets what is half-typed and every complaint.
    void set(const WallTime& value);

    [[nodiscard]] const WallTime& value() const { return m_value; }
    /// What it becomes if the typing ends here; none while that is no time.
    [[nodiscard]] std::optional<WallTime> typed() const;
    [[nodiscard]] bool isHalfTyped() const { return m_isHalfTyped; }
    /// What the user is to be told; empty when all is well.
    [[nodiscard]] const QString& complaint() const { return m_complaint; }
    /// Whether what is shown cannot be taken.
    [[nodiscard]] bool isWrong() const { return m_isWrong; }

    [[nodiscard]] QString text() const;
    [[nodiscard]] Section section() const;
    /// Its place in the text: first and length.
    [[nodiscard]] std::pair<int, int> rangeOf(Section section) const;
    [[nodiscard]] Section sectionAt(int position) const;

    void select(Section section);
    /// False where there is no further section.
    bool move(int sections);
    /// A digit, of any width, or a separator; anything else is ignored (false).
    bool type(QChar character);
    void eraseLast();
    /// A few digits are as typed; else a date, a time or both.
    void paste(const QString& text);
    /// Adds to the selected section, carrying over, past what cannot be meant; never to before `earliest`
    /// from behind it.
    void step(int steps, const WallTime& earliest);
    void setDate(QDate date);
    /// The typing has ended; false when it left no time.
    bool finish();

    /// Whether another time has come to hold, or the same was typed anew, since this was asked last.
    [[nodiscard]] bool takeEdited() { return std::exchange(m_isEdited, false); }

private:
    enum class Strictness { lenient, strict };

    [[nodiscard]] std::optional<Parts> withDigits(const QString& digits) const;
    [[nodiscard]] bool isFull() const;
    [[nodiscard]] std::array<QString, 5> shownParts() const;
    void typeDigit(QChar digit);
    void typeSeparator();
    bool settle(Strictness strictness);
    void hold(const WallTime& value);
    void complain(const QString& complaint) { m_complaint = complaint; }

    Objection m_objection;
    WallTime m_value;
    Parts m_parts{};  // what is shown, but for the digits
    QString m_digits; // typed into the section since it was selected; hours may go on into minutes
    Section m_section = Section::hour;
    QString m_complaint;
    bool m_isHalfTyped = false;
    bool m_isWrong = false;
    bool m_isEdited = false;
    bool m_isAfterSeparator = false;
};

} // namespace kestu
