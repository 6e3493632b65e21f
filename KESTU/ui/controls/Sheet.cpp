// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Sheet.h"

#include "ui/controls/Alert.h"
#include "ui/controls/Painted.h"
#include "ui/controls/Roles.h"
#include "ui/controls/Settling.h"
#include "ui/controls/SheetSupport.h"
#include "ui/controls/Surfaces.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <algorithm>
#include <utility>

namespace kestu {
namespace {

constexpr int padding = 20;
constexpr int hostMargin = 48; // above and below together

} // namespace

Sheet::Sheet(QWidget* host, int width)
    : QWidget(host)
    , m_card(new SheetCard(this))
    , m_scroll(new QScrollArea)
    , m_content(nullptr)
    , m_footer(nullptr)
    , m_footerBox(new QWidget)
    , m_footerLine(new Divider)
    , m_width(width) {
    reportRole(this, QAccessible::Dialog);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_NoMousePropagation);
    hide();
    build();
}

Sheet::~Sheet() {
    if (m_presented) { // deleted instead of closed
        uncoverHost();
    }
}

void Sheet::build() {
    m_card->setProperty(focusHostProperty, true);
    auto* const column = new QVBoxLayout(m_card);
    column->setContentsMargins(1, 1, 1, 1);
    column->setSpacing(0);
    auto* const body = new QWidget;
    m_content = new QVBoxLayout(body);
    m_content->setContentsMargins(padding, padding, padding, 0);
    m_scroll->setWidget(body);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    // The card shows through.
    m_scroll->viewport()->setAutoFillBackground(false);
    body->setAutoFillBackground(false);
    body->installEventFilter(this);
    column->addWidget(m_scroll, 1);
    column->addWidget(m_footerLine);
    column->addWidget(m_footerBox);
    m_footer = new QHBoxLayout(m_footerBox);
    m_footer->setSpacing(8);
    m_footer->addStretch();
    setFooterLine(false);
}

void Sheet::setFooterLine(bool shown) {
    m_footerLine->setVisible(shown);
    const int above = shown ? 12 : 16;
    m_footer->setContentsMargins(padding, above, padding, shown ? 12 : padding);
    m_content->setContentsMargins(padding, padding, padding, shown ? padding : 0);
}

QPushButton* Sheet::addButton(const QString& text, bool isDefault) {
    auto* const button = new QPushButton(text);
    button->setDefault(isDefault);
    m_footer->addWidget(button);
    return button;
}

void Sheet::present() {
    if (m_presented) {
        return;
    }
    m_presented = true;
    m_focusBefore = window()->focusWidget();
    coverHost();
    parentWidget()->installEventFilter(this);
    setGeometry(parentWidget()->rect());
    raise();
    show();
    place();
    settle(*m_card); // so that the first field can be brought into view
    place();
    focusFirst();
    announceSheet(this, true);
}

void Sheet::coverHost() {
    for (QObject* const child : parentWidget()->children()) {
        auto* const widget = qobject_cast<QWidget*>(child);
        if (widget && widget != this && !widget->isWindow() && cover(widget)) {
            m_covered.emplace_back(widget);
        }
    }
}

void Sheet::uncoverHost() {
    for (const QPointer<QWidget>& widget : std::exchange(m_covered, {})) {
        if (widget) {
            uncover(widget);
        }
    }
}

void Sheet::cancel() {
    if (!m_dismissable || m_question) {
        return;
    }
    if (holdsDraft()) {
        m_question = Alert::askToDiscard(parentWidget(), [this] { dismiss(); });
        connect(this, &Sheet::closed, m_question, &QWidget::close);
    } else {
        dismiss();
    }
}

void Sheet::dismiss() {
    const QPointer<Sheet> self(this); // who listens may have deleted it
    Q_EMIT cancelled();
    if (self) {
        close();
    }
}

void Sheet::closeEvent(QCloseEvent* event) {
    event->accept();
    if (!m_presented) {
        return;
    }
    m_presented = false;
    parentWidget()->removeEventFilter(this);
    const QWidget* const focused = window()->focusWidget();
    const bool hadFocus = !focused || focused == this || isAncestorOf(focused);
    uncoverHost();
    if (hadFocus) {
        restoreFocus();
    }
    announceSheet(this, false);
    Q_EMIT closed();
}

void Sheet::restoreFocus() {
    if (m_focusBefore && m_focusBefore->isEnabled() && m_focusBefore->isVisible()) {
        m_focusBefore->setFocus(Qt::OtherFocusReason);
        return;
    }
    const auto others = parentWidget()->findChildren<Sheet*>(Qt::FindDirectChildrenOnly);
    for (auto other = others.rbegin(); other != others.rend(); ++other) {
        if ((*other)->isPresented() && (*other)->isEnabled()) {
            (*other)->focusFirst();
            return;
        }
    }
}

std::vector<QWidget*> Sheet::stops() const {
    std::vector<QWidget*> found;
    for (QWidget* widget = nextInFocusChain(); widget != this; widget = widget->nextInFocusChain()) {
        if (isAncestorOf(widget) && (widget->focusPolicy() & Qt::TabFocus) && widget->isVisibleTo(this) &&
            widget->isEnabled() && !widget->focusProxy()) {
            found.push_back(widget);
        }
    }
    // Whoever makes its buttons first still wants to reach them last.
    std::stable_partition(found.begin(), found.end(),
                          [this](QWidget* widget) { return !m_footerBox->isAncestorOf(widget); });
    return found;
}

void Sheet::focusFirst() {
    const std::vector<QWidget*> all = stops();
    QWidget* first = m_firstFocus;
    const auto isField = [this](const QWidget* stop) {
        return !m_footerBox->isAncestorOf(stop) && !qobject_cast<const QLabel*>(stop);
    };
    if (const auto field = std::find_if(all.begin(), all.end(), isField); !first && field != all.end()) {
        first = *field;
    }
    if (!first) {
        first = defaultButton();
    }
    if (!first) {
        first = all.empty() ? this : all.front();
    }
    first->setFocus(Qt::OtherFocusReason);
    m_scroll->ensureWidgetVisible(first);
}

bool Sheet::focusNextPrevChild(bool next) {
    if (!m_presented) {
        return QWidget::focusNextPrevChild(next);
    }
    const std::vector<QWidget*> all = stops();
    if (all.empty()) {
        return true; // there is nowhere to go, least of all out of the sheet
    }
    const auto at = std::find(all.begin(), all.end(), window()->focusWidget());
    const std::size_t count = all.size();
    std::size_t index = next ? 0 : count - 1;
    if (at != all.end()) {
        index = (static_cast<std::size_t>(at - all.begin()) + (next ? 1 : count - 1)) % count;
    }
    window()->setAttribute(Qt::WA_KeyboardFocusChange); // the style shows focus rings from now on
    all[index]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    m_scroll->ensureWidgetVisible(all[index]);
    return true;
}

QPushButton* Sheet::defaultButton() const {
    for (QPushButton* const button : findChildren<QPushButton*>()) {
        if (button->isDefault() && button->isVisibleTo(this)) {
            return button;
        }
    }
    return nullptr;
}

void Sheet::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        cancel();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        auto* const focused = qobject_cast<QPushButton*>(window()->focusWidget());
        if (QPushButton* const pressed = focused ? focused : defaultButton()) {
            pressed->click();
        }
        return;
    }
    default:
        // Keys do not reach what lies beneath.
        event->accept();
    }
}

int Sheet::cardWidth() const {
    return std::min(m_width, width());
}

int Sheet::cardHeight() const {
    constexpr int edges = 2;
    const int inner = cardWidth() - edges;
    const int body = m_content->hasHeightForWidth() ? m_content->totalHeightForWidth(inner)
                                                    : m_content->totalSizeHint().height();
    const int buttons = m_footer->count() > 1 ? m_footer->totalSizeHint().height() : padding;
    const int line = m_footerLine->isHidden() ? 0 : 1;
    return std::min(body + line + buttons + edges, std::max(height() - hostMargin, buttons + edges));
}

/// In the middle.
void Sheet::place() {
    m_top = (height() - cardHeight()) / 2;
    fit();
}

/// What is being read and clicked stays where it is, as long as there is room below.
void Sheet::fit() {
    m_footerBox->setVisible(m_footer->count() > 1);
    const int wanted = cardHeight();
    const int top = std::min(m_top, height() - hostMargin / 2 - wanted);
    m_card->setGeometry((width() - cardWidth()) / 2, top, cardWidth(), wanted);
    update();
}

void Sheet::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    place();
    QWidget* const focused = window()->focusWidget();
    if (m_presented && focused && isAncestorOf(focused)) {
        settle(*m_card);
        m_scroll->ensureWidgetVisible(focused);
    }
}

bool Sheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    } else if (watched == m_scroll->widget() && event->type() == QEvent::LayoutRequest && m_presented) {
        fit();
    }
    return QWidget::eventFilter(watched, event);
}

void Sheet::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    painter.fillRect(rect(), colors.scrim);
    paintShadow(painter, m_card->geometry(), metrics::radiusSheet, colors.shadow, 10, 30);
}

} // namespace kestu
