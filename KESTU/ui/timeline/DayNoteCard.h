// SPDX-License-Identifier: GPL-3.0-or-later
//
// The note of the selected day, or how to get one: asking an assistant for it, or writing it. It opens the
// editor over its window. Part of the timeline screen.
#pragma once

#include <QPointer>
#include <QWidget>

class QBoxLayout;
class QHBoxLayout;
class QPushButton;

namespace kestu {

class AppModel;
class Badge;
class DayNoteEditor;
class NoteView;

class DayNoteCard final : public QWidget {
    Q_OBJECT

public:
    explicit DayNoteCard(AppModel& model);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] QWidget* makeNote();
    [[nodiscard]] QWidget* makeInvitation();
    [[nodiscard]] QHBoxLayout* makeButtons();
    void refresh();
    void setCopied(bool copied);
    void copyRequest();
    void edit();
    void focusButton();

    AppModel& m_model;
    Badge* m_author;
    NoteView* m_text;
    QPushButton* m_edit;
    QPushButton* m_copy;
    QPushButton* m_write;
    QBoxLayout* m_row;  // of the invitation
    int m_rowWidth = 0; // that it needs
    QWidget* m_note;
    QWidget* m_invitation; // while there is no note
    QPointer<DayNoteEditor> m_editor;
};

} // namespace kestu
