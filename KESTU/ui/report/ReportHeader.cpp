// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/ReportHeader.h"

#include "ui/controls/IconButton.h"
#include "ui/controls/SegmentedPicker.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/Texts.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace kestu {
namespace {

constexpr int pickerWidth = 160;
constexpr int gap = 12;

/// In the order of allReportPeriods.
QStringList periodLabels() {
    return {QStringLiteral("日"), QStringLiteral("週"), QStringLiteral("月")};
}

void name(IconButton& button, const QString& pattern, ReportPeriod period) {
    const QString text = pattern.arg(periodLabels().at(static_cast<qsizetype>(period)));
    button.setAccessibleName(text);
    tellKeys(button, text, button.shortcut());
}

} // namespace

ReportHeader::ReportHeader(QWidget* parent)
    : QWidget(parent)
    , m_title(new TextLabel({}, TextStyle::title1, ink::primary, Overflow::elideRight))
    , m_picker(new SegmentedPicker(QStringLiteral("期間"), periodLabels()))
    , m_back(new IconButton(QStringLiteral("chevron.left"), {}, IconButton::Kind::framed))
    , m_now(new QPushButton(QStringLiteral("いま")))
    , m_forward(new IconButton(QStringLiteral("chevron.right"), {}, IconButton::Kind::framed))
    , m_row(new QHBoxLayout(this))
    , m_controls(new QHBoxLayout) {
    m_picker->setFixedWidth(pickerWidth);
    m_back->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Left));
    m_forward->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Right));
    auto* steps = new QHBoxLayout;
    steps->setSpacing(4);
    steps->addWidget(m_back);
    steps->addWidget(m_now);
    steps->addWidget(m_forward);
    m_controls->setSpacing(gap);
    m_controls->addWidget(m_picker);
    m_controls->addLayout(steps);
    m_row->setContentsMargins(0, 0, 0, 0);
    m_row->setSpacing(gap);
    m_row->addWidget(m_title, 1);
    m_row->addLayout(m_controls);

    connect(m_picker, &SegmentedPicker::chosen, this,
            [this](int index) { Q_EMIT periodChosen(allReportPeriods[static_cast<std::size_t>(index)]); });
    connect(m_back, &QAbstractButton::clicked, this, [this] { Q_EMIT stepped(StepDirection::back); });
    connect(m_now, &QAbstractButton::clicked, this, &ReportHeader::nowRequested);
    connect(m_forward, &QAbstractButton::clicked, this, [this] { Q_EMIT stepped(StepDirection::forward); });
}

void ReportHeader::display(ReportPeriod period, const QString& title, bool holdsNow) {
    m_title->setText(title);
    arrange();
    m_picker->setCurrent(static_cast<int>(period));
    name(*m_back, QStringLiteral("前の%1"), period);
    name(*m_forward, QStringLiteral("次の%1"), period);
    if (holdsNow && (m_now->hasFocus() || m_forward->hasFocus())) {
        m_back->setFocus(); // a disabled button would pass the focus on to whatever comes next
    }
    m_now->setEnabled(!holdsNow);
    m_forward->setEnabled(!holdsNow);
}

void ReportHeader::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

/// The controls stand below a title that they would leave no room for.
void ReportHeader::arrange() {
    const bool isWrapped = m_title->sizeHint().width() + gap + m_controls->sizeHint().width() > width();
    m_row->setDirection(isWrapped ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    m_row->setAlignment(m_controls, isWrapped ? Qt::AlignLeft : Qt::Alignment());
}

} // namespace kestu
