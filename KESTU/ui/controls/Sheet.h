// SPDX-License-Identifier: GPL-3.0-or-later
//
// A card over a scrim that covers its host, the content of a window: while it is open, everything else in the
// host is disabled for real, and keeps its look. Sheets stack. A sheet belongs to its host from construction
// on and deletes itself once closed.
#pragma once

#include "ui/controls/DraftHolder.h"

#include <QPointer>
#include <QWidget>
#include <vector>

class QHBoxLayout;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace kestu {

class Alert;
class Divider;

class Sheet : public QWidget, public DraftHolder {
    Q_OBJECT

public:
    Sheet(QWidget* host, int width);
    ~Sheet() override;
    Q_DISABLE_COPY_MOVE(Sheet)

    /// What scrolls when the sheet is higher than its host; with a padding of 20.
    [[nodiscard]] QVBoxLayout* content() const { return m_content; }
    /// The buttons, right-aligned, which stay in view.
    [[nodiscard]] QHBoxLayout* footer() const { return m_footer; }
    /// A hairline above the footer; without it the footer belongs to the content.
    void setFooterLine(bool shown);
    /// Adds a button to the footer. Return presses the default one, wherever the focus is but on a button.
    QPushButton* addButton(const QString& text, bool isDefault = false);

    /// Whether Escape cancels; it does unless told otherwise.
    void setDismissable(bool dismissable) { m_dismissable = dismissable; }
    /// What has the focus first, instead of the first field.
    void setFirstFocus(QWidget* widget) { m_firstFocus = widget; }

    /// Nothing, unless a sheet says more.
    [[nodiscard]] bool holdsDraft() const override { return false; }

    void present();
    [[nodiscard]] bool isPresented() const { return m_presented; }
    /// Cancels, as Escape does; asks first when that would lose what the user typed.
    void cancel();

Q_SIGNALS:
    void cancelled();
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void build();
    void dismiss();
    void place();
    void fit();
    void coverHost();
    void uncoverHost();
    void focusFirst();
    void restoreFocus();
    [[nodiscard]] int cardWidth() const;
    [[nodiscard]] int cardHeight() const;
    [[nodiscard]] std::vector<QWidget*> stops() const;
    [[nodiscard]] QPushButton* defaultButton() const;

    QWidget* m_card;
    QScrollArea* m_scroll;
    QVBoxLayout* m_content;
    QHBoxLayout* m_footer;
    QWidget* m_footerBox;
    Divider* m_footerLine;
    int m_width;
    int m_top = 0; // of the card, in the middle when it was presented
    bool m_dismissable = true;
    bool m_presented = false;
    QPointer<Alert> m_question;
    QPointer<QWidget> m_firstFocus;
    QPointer<QWidget> m_focusBefore;
    std::vector<QPointer<QWidget>> m_covered;
};

} // namespace kestu
