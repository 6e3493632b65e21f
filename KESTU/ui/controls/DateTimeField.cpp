// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/DateTimeField.h"

#include "ui/controls/Announcing.h"
#include "ui/controls/CalendarPopup.h"
#include "ui/theme/Icons.h"
#include "ui/theme/KestuStyle.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>

namespace kestu {
namespace {

using Section = DateTimeEntry::Section;

constexpr QSize fieldSize{226, metrics::controlHeight};
constexpr int buttonWidth = 26;
constexpr int pageSteps = 10;

} // namespace

DateTimeField::DateTimeField(const QString& name, QWidget* parent)
    : QAbstractSpinBox(parent)
    , m_calendarButton(new QToolButton(this)) {
    setFixedSize(fieldSize);
    setAccessibleName(name);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    lineEdit()->setReadOnly(true); // it only shows what the entry holds
    lineEdit()->installEventFilter(this);
    reserveTrailing(this, buttonWidth);
    m_calendarButton->setIcon(iconOf(u"calendar", ink::secondary));
    m_calendarButton->setIconSize({metrics::iconSmall, metrics::iconSmall});
    m_calendarButton->setAccessibleName(name + QStringLiteral("の日付を選ぶ"));
    m_calendarButton->setToolTip(QStringLiteral("カレンダー"));
    m_calendarButton->setCursor(Qt::ArrowCursor);
    m_calendarButton->setFocusPolicy(Qt::NoFocus); // the day can be stepped in the field
    setBorderless(m_calendarButton);
    connect(m_calendarButton, &QToolButton::clicked, this, &DateTimeField::showCalendar);
}

void DateTimeField::setWallTime(const WallTime& value) {
    m_entry.set(value);
    showEntry(hasFocus());
}

void DateTimeField::setRemark(const QString& remark) {
    m_remark = remark;
    showEntry(hasFocus());
}

void DateTimeField::showEntry(bool selected) {
    QLineEdit* edit = lineEdit();
    if (edit->text() != m_entry.text()) {
        edit->setText(m_entry.text());
    }
    if (const auto [first, length] = m_entry.rangeOf(m_entry.section()); selected) {
        edit->setSelection(first, length);
    } else {
        edit->deselect();
    }
    if (accessibleDescription() != told()) {
        setAccessibleDescription(told());
        if (!told().isEmpty()) {
            announce(*this, told());
        }
    }
    setWrong(this, m_entry.isWrong() || !m_remark.isEmpty());
}

/// After whatever the user did.
void DateTimeField::refresh() {
    showEntry(hasFocus());
    if (m_entry.takeEdited()) {
        Q_EMIT edited();
    }
    Q_EMIT changed();
}

bool DateTimeField::finish() {
    const bool isFinished = m_entry.finish();
    refresh();
    return isFinished;
}

void DateTimeField::stepBy(int steps) {
    m_entry.step(steps, m_earliest);
    refresh();
}

QValidator::State DateTimeField::validate(QString& /*text*/, int& /*position*/) const {
    return QValidator::Acceptable;
}

void DateTimeField::take(const QString& text) {
    if (text.size() != 1 || !m_entry.type(text.front())) {
        m_entry.paste(text); // which says what is wanted
    }
    refresh();
}

bool DateTimeField::event(QEvent* event) {
    if (event->type() != QEvent::InputMethod) {
        return QAbstractSpinBox::event(event);
    }
    // What arrives all the same, from an on-screen keyboard or by voice.
    if (const QString text = static_cast<QInputMethodEvent*>(event)->commitString(); !text.isEmpty()) {
        take(text);
    }
    event->accept();
    return true;
}

/// None is enabled, else digits would be composed and end as none; a spin box would ask its line edit.
QVariant DateTimeField::inputMethodQuery(Qt::InputMethodQuery query) const {
    return query == Qt::ImEnabled ? QVariant(false) : QAbstractSpinBox::inputMethodQuery(query);
}

void DateTimeField::keyPressEvent(QKeyEvent* event) {
    const bool isPlain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (event->matches(QKeySequence::Paste)) {
        paste();
        return;
    }
    if (event->matches(QKeySequence::Copy)) {
        copy();
        return;
    }
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        const bool isUp = event->key() == Qt::Key_Up || event->key() == Qt::Key_PageUp;
        const bool isPage = event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
        stepBy((isUp ? 1 : -1) * (isPage ? pageSteps : 1));
        return;
    }
    case Qt::Key_Left:
    case Qt::Key_Right:
        m_entry.move(event->key() == Qt::Key_Left ? -1 : 1);
        refresh();
        return;
    case Qt::Key_Home:
    case Qt::Key_End:
        m_entry.select(event->key() == Qt::Key_Home ? Section::year : Section::minute);
        refresh();
        return;
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        m_entry.eraseLast();
        refresh();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        event->setAccepted(!finish()); // else it is for the sheet
        return;
    default:
        break;
    }
    if (isPlain && !event->text().isEmpty() && event->text().front().isPrint()) {
        take(event->text());
    } else {
        event->ignore();
    }
}

void DateTimeField::paste() {
    take(QGuiApplication::clipboard()->text());
}

void DateTimeField::copy() const {
    QGuiApplication::clipboard()->setText(m_entry.text());
}

void DateTimeField::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("コピー"), this, &DateTimeField::copy);
    menu->addAction(QStringLiteral("貼り付け"), this, &DateTimeField::paste);
    menu->popup(event->globalPos());
}

/// Tab goes from part to part, and on from the last one.
bool DateTimeField::focusNextPrevChild(bool next) {
    if (m_entry.move(next ? 1 : -1)) {
        refresh();
        return true;
    }
    return QAbstractSpinBox::focusNextPrevChild(next);
}

void DateTimeField::focusInEvent(QFocusEvent* event) {
    QAbstractSpinBox::focusInEvent(event);
    if (event->reason() == Qt::BacktabFocusReason) {
        m_entry.select(Section::minute);
    } else if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::OtherFocusReason) {
        m_entry.select(Section::hour); // seldom it is the year that is wrong
    }
    showEntry(true);
}

void DateTimeField::focusOutEvent(QFocusEvent* event) {
    QAbstractSpinBox::focusOutEvent(event);
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason) {
        finish();
    }
}

void DateTimeField::selectAt(QPoint point) {
    m_entry.select(m_entry.sectionAt(lineEdit()->cursorPositionAt(point)));
    refresh();
}

/// The mouse selects parts, never letters; its middle button pastes what was selected last.
bool DateTimeField::eventFilter(QObject* watched, QEvent* event) {
    switch (watched == lineEdit() ? event->type() : QEvent::None) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        const auto* press = static_cast<QMouseEvent*>(event);
        if (press->button() == Qt::LeftButton) {
            selectAt(press->position().toPoint());
        } else if (press->button() == Qt::MiddleButton && QGuiApplication::clipboard()->supportsSelection()) {
            take(QGuiApplication::clipboard()->text(QClipboard::Selection));
        }
        return true;
    }
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        return true;
    default:
        return QAbstractSpinBox::eventFilter(watched, event);
    }
}

void DateTimeField::resizeEvent(QResizeEvent* event) {
    QAbstractSpinBox::resizeEvent(event);
    m_calendarButton->setGeometry(width() - buttonWidth, 2, buttonWidth - 2, height() - 4);
}

void DateTimeField::showCalendar() {
    auto* popup = new CalendarPopup(m_entry.value().date, m_earliest.date, this);
    connect(popup, &CalendarPopup::chosen, this, [this](QDate day) {
        m_entry.setDate(day);
        refresh();
    });
    popup->open();
}

} // namespace kestu
