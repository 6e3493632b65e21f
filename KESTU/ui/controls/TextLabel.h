// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every text on the screens: plain, in one of the text styles and inks. It wraps anywhere, elides (then the
// whole text is its tooltip), or is always shown whole. A copyable one can be selected with the mouse, and
// whole with the keyboard; of an elided one the whole text is copied. It belongs to its parent widget.
#pragma once

#include "ui/theme/Theme.h"

#include <QLabel>

class QTextLayout;

namespace kestu {

enum class Overflow { whole, wrap, elideRight, elideMiddle };

class TextLabel : public QLabel {
    Q_OBJECT

public:
    explicit TextLabel(const QString& text, TextStyle style = TextStyle::callout,
                       QPalette::ColorRole color = ink::primary, Overflow overflow = Overflow::whole,
                       QWidget* parent = nullptr);

    void setCopyable(bool copyable);
    /// A wrapping text ends after so many lines, elided; 0 is without an end.
    void setMaximumLines(int lines);

    [[nodiscard]] bool isElided() const;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    [[nodiscard]] QString shownText(int width) const;
    [[nodiscard]] QSize textSize(int width) const;
    [[nodiscard]] QSize framed(QSize text) const;
    [[nodiscard]] int positionAt(QPoint point) const;
    [[nodiscard]] bool wraps() const { return m_overflow == Overflow::wrap; }
    void select(int anchor, int end);
    void selectAll();
    void copy() const;

    Overflow m_overflow;
    int m_maximumLines = 0;
    bool m_copyable = false;
    int m_anchor = 0;
    int m_end = 0;
};

} // namespace kestu
