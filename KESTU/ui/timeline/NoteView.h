// SPDX-License-Identifier: GPL-3.0-or-later
//
// Shows the text of a note whole, as high as it needs to be at its width. It can be selected and copied, and
// its links be reached, with the mouse and the keyboard. It loads nothing, whatever the text says. Owned by
// DayNoteCard.
#pragma once

#include <QPalette>
#include <QTextBrowser>

#include <vector>

namespace kestu {

struct NoteSpan;

class NoteView final : public QTextBrowser {
    Q_OBJECT

public:
    explicit NoteView(QWidget* parent = nullptr);

    void setNote(const QString& summary);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QVariant loadResource(int type, const QUrl& name) override;

protected:
    [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    struct LinkRange {
        int start;
        int end;
    };

    void write(const std::vector<NoteSpan>& spans);
    void colorLinks();
    void copyText(const QString& text) const;

    QString m_summary;
    std::vector<LinkRange> m_links;
    QTextDocument* m_measure; // the same text, laid out to ask for its height only
    mutable int m_measuredWidth = -1;
};

} // namespace kestu
