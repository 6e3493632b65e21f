// SPDX-License-Identifier: GPL-3.0-or-later
//
// A date with hour and minute to be typed, pasted, stepped, or chosen from a calendar. It holds a time on the
// wall, without a zone. A click or Tab selects a part of it, and digits replace that; what is half-typed
// holds once the part is full or left. It takes no input method. It belongs to its parent widget.
#pragma once

#include "ui/controls/DateTimeEntry.h"

#include <QAbstractSpinBox>

class QToolButton;

namespace kestu {

class DateTimeField final : public QAbstractSpinBox {
    Q_OBJECT

public:
    explicit DateTimeField(const QString& name, QWidget* parent = nullptr);

    void setWallTime(const WallTime& value);
    /// Nothing before it can be stepped to or chosen from the calendar; what is typed may be.
    void setEarliest(const WallTime& earliest) { m_earliest = earliest; }
    /// Why a time that the calendar knows cannot be meant; empty when it can.
    void setObjection(DateTimeEntry::Objection objection) { m_entry.setObjection(std::move(objection)); }
    /// Shows, and announces once, that what it holds does not go with the rest; empty takes it back.
    void setRemark(const QString& remark);

    /// What the user is told about it; empty when all is well.
    [[nodiscard]] const QString& told() const {
        return m_entry.complaint().isEmpty() ? m_remark : m_entry.complaint();
    }

    [[nodiscard]] const DateTimeEntry& entry() const { return m_entry; }
    /// What is half-typed is all that comes. False when it is no time, which the field shows then.
    bool finish();

    void stepBy(int steps) override;
    bool event(QEvent* event) override;
    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    /// The user gave another time; not emitted by setWallTime.
    void edited();
    /// What is shown changed, or what there is to be told; after edited().
    void changed();

protected:
    [[nodiscard]] StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }
    [[nodiscard]] QValidator::State validate(QString& text, int& position) const override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void take(const QString& text);
    void paste();
    void copy() const;
    void selectAt(QPoint point);
    void showEntry(bool selected);
    void refresh();
    void showCalendar();

    QToolButton* m_calendarButton;
    DateTimeEntry m_entry;
    WallTime m_earliest;
    QString m_remark;
};

} // namespace kestu
