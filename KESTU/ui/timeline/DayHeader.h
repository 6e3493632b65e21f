// SPDX-License-Identifier: GPL-3.0-or-later
//
// The selected day and its total, the button that adds an entry, and the way to other days. In a narrow
// column the texts of its buttons give way, and then they stand below the day. It belongs to its parent
// widget.
#pragma once

#include <QWidget>

class QBoxLayout;
class QPushButton;

namespace kestu {

class AppModel;
class IconButton;
class TextLabel;

/// The keys of its buttons.
namespace dayKeys {
inline constexpr QKeyCombination add = Qt::CTRL | Qt::Key_N;
inline constexpr QKeyCombination today = Qt::CTRL | Qt::Key_T;
inline constexpr QKeyCombination previous = Qt::ALT | Qt::Key_Left;
inline constexpr QKeyCombination next = Qt::ALT | Qt::Key_Right;
inline constexpr QKeyCombination panel{Qt::Key_F9};
} // namespace dayKeys

/// Opens the sheet with the entry that is most likely to be missing on the selected day.
void proposeEntry(AppModel& model);

class DayHeader final : public QWidget {
    Q_OBJECT

public:
    explicit DayHeader(AppModel& model);

    /// The way to what lies beside the day, where it does not stand there at all times.
    enum class PanelButton { none, opens, closes };
    void setPanelButton(PanelButton button);
    [[nodiscard]] QWidget* panelButton() const;

Q_SIGNALS:
    void panelAsked();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] QBoxLayout* makeTexts();
    [[nodiscard]] QBoxLayout* makeAdding();
    [[nodiscard]] QBoxLayout* makeSteps();
    void arrange();
    void setNarrow(bool isNarrow);
    [[nodiscard]] int neededWidth() const;
    void refreshDay();
    void refreshTotal();

    AppModel& m_model;
    TextLabel* m_date;
    TextLabel* m_total;
    QPushButton* m_add;
    IconButton* m_previous;
    QPushButton* m_today;
    IconButton* m_next;
    IconButton* m_panel;
    QBoxLayout* m_row;
    QBoxLayout* m_controls;
};

} // namespace kestu
