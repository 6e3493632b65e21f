// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Text.h"

#include <QLocale>

#include <algorithm>

namespace kestu {
namespace {

bool isBlank(QChar c) {
    return c == u'\t' || c.category() == QChar::Separator_Space;
}

bool isLineBreak(QChar c) {
    return (c >= u'\n' && c <= u'\r') || c == QChar(0x85) || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

bool isWhiteSpace(QChar c) {
    return isBlank(c) || isLineBreak(c);
}

QString trimmedOf(const QString& text, bool (*isTrimmed)(QChar)) {
    const auto first = std::find_if_not(text.begin(), text.end(), isTrimmed);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isTrimmed).base();
    return QString(first, last - first);
}

} // namespace

QString trimmedBlanks(const QString& text) {
    return trimmedOf(text, isBlank);
}

QString trimmedWhiteSpace(const QString& text) {
    return trimmedOf(text, isWhiteSpace);
}

QString matchingKey(const QString& name) {
    return trimmedBlanks(name).toLower();
}

QString decimalText(double number) {
    const QString digits = QString::number(number, 'f', QLocale::FloatingPointShortest);
    return digits.contains(u'.') ? digits : digits + QStringLiteral(".0");
}

QString foldedText(const QString& text) {
    // The lower case of a capital sigma depends on its place in the word, which toLower() does not regard.
    return text.toLower().replace(u'ς', u'σ').normalized(QString::NormalizationForm_C);
}

} // namespace kestu
