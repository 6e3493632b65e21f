// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/ProjectsScreen.h"

#include "app/AppModel.h"
#include "ui/controls/SegmentedPicker.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/Texts.h"
#include "ui/projects/AddCategoryRow.h"
#include "ui/projects/CategoryList.h"
#include "ui/projects/RowSync.h"
#include "ui/projects/SuggestionsSection.h"

#include <QHideEvent>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int widest = 840;
constexpr int padding = 24;
constexpr int gap = 20;
constexpr int pickerWidth = 280;

QString explanationOf(CategoryKind kind) {
    if (kind == CategoryKind::tag) {
        return QStringLiteral(
            "タグは1つの区間にいくつでも付きます（「会議」「集中」「顧客A」など横断の切り口）。"
            "当てはまるルールはすべて効くので、"
            "タグ別の時間を足すと合計を超えることがあります。");
    }
    return QStringLiteral("プロジェクトは1つの区間に1つだけ付きます。"
                          "プロジェクト別の時間を足すと、記録の合計とちょうど一致します（請求・工数向き）。"
                          "ルールは上から順に見て、最初に当てはまったものを使います。");
}

} // namespace

ProjectsScreen::ProjectsScreen(AppModel& model)
    : m_model(model)
    , m_scroll(new QScrollArea)
    , m_suggestions(new SuggestionsSection(model))
    , m_picker(new SegmentedPicker(QStringLiteral("分類の種類"),
                                   {labelOf(CategoryKind::project), labelOf(CategoryKind::tag)}))
    , m_explanation(new TextLabel({}, TextStyle::callout, ink::secondary, Overflow::wrap))
    , m_add(new AddCategoryRow(model)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_scroll);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->setWidget(makeColumn());
    m_scroll->viewport()->setAutoFillBackground(false);
    m_scroll->widget()->setAutoFillBackground(false);
    m_scroll->viewport()->installEventFilter(this);
    m_suggestions->installEventFilter(this);
    connect(m_scroll->verticalScrollBar(), &QScrollBar::valueChanged, this, &ProjectsScreen::fillInView);
    connect(m_picker, &SegmentedPicker::chosen, this,
            [this](int index) { showKind(index == 0 ? CategoryKind::project : CategoryKind::tag); });
    showKind(m_kind);
}

QWidget* ProjectsScreen::makeColumn() {
    m_picker->setFixedWidth(pickerWidth);
    auto* column = new QWidget;
    column->setMaximumWidth(widest);
    m_column = new QVBoxLayout(column);
    m_column->setContentsMargins(padding, padding, padding, padding);
    m_column->setSpacing(gap);
    m_column->addWidget(m_suggestions);
    m_column->addWidget(m_picker);
    m_column->addWidget(m_explanation);
    m_column->addWidget(m_add);
    m_column->addStretch(1);
    auto* page = new QWidget;
    auto* row = new QHBoxLayout(page);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(column, widest);
    row->addStretch(1);
    return page;
}

CategoryList* ProjectsScreen::list(CategoryKind kind) {
    CategoryList*& list = m_lists.at(static_cast<std::size_t>(kind));
    if (!list) {
        list = new CategoryList(m_model, kind, stopsIn(*m_add).back(), m_add->parentWidget());
        m_column->insertWidget(m_column->count() - 1, list);
    }
    return list;
}

void ProjectsScreen::showKind(CategoryKind kind) {
    m_kind = kind;
    m_picker->setCurrent(kind == CategoryKind::project ? 0 : 1);
    m_explanation->setText(explanationOf(kind));
    m_add->setKind(kind);
    for (CategoryList* other : m_lists) {
        if (other) {
            other->hide();
        }
    }
    list(kind)->show();
}

void ProjectsScreen::fillInView() {
    CategoryList* shown = list(m_kind);
    const int top = shown->mapFrom(m_scroll->viewport(), QPoint()).y();
    shown->fillBetween(top, top + m_scroll->viewport()->height());
}

/// What comes or goes above does not move what the user is looking at.
bool ProjectsScreen::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_scroll->viewport() && event->type() == QEvent::Resize) {
        fillInView();
    } else if (watched == m_suggestions && event->type() == QEvent::Resize) {
        const auto& resize = static_cast<const QResizeEvent&>(*event);
        QScrollBar* bar = m_scroll->verticalScrollBar();
        if (bar->value() > m_suggestions->geometry().top() + resize.oldSize().height()) {
            bar->setValue(bar->value() + resize.size().height() - resize.oldSize().height());
        }
    }
    return QWidget::eventFilter(watched, event);
}

/// Whoever comes back begins with the projects.
void ProjectsScreen::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous()) {
        m_suggestions->reset();
        showKind(CategoryKind::project);
    }
}

} // namespace kestu
