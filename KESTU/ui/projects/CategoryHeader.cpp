// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/CategoryHeader.h"

#include "app/AppModel.h"
#include "ui/controls/ColorChoice.h"
#include "ui/projects/NameField.h"
#include "ui/theme/Icons.h"
#include "ui/theme/KestuStyle.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QToolButton>

namespace kestu {
namespace {

constexpr int gap = 10;
constexpr int textIndent = 4; // of the name within its field

QToolButton* makeDelete() {
    auto* button = new QToolButton;
    button->setIcon(iconOf(u"trash", ink::red));
    button->setIconSize({metrics::icon, metrics::icon});
    button->setToolTip(QStringLiteral("削除"));
    button->setAccessibleName(button->toolTip());
    button->setFocusPolicy(Qt::StrongFocus);
    setRole(button, ButtonRole::destructive);
    return button;
}

} // namespace

CategoryMark::CategoryMark(CategoryKind kind)
    : m_kind(kind) {
    setFixedSize(metrics::icon, metrics::icon);
}

void CategoryMark::setColor(const QColor& color) {
    m_color = color;
    update();
}

void CategoryMark::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (m_kind == CategoryKind::tag) {
        paintIcon(painter, rect(), u"tag.fill", m_color);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_color);
    painter.drawEllipse(rect().adjusted(2, 2, -2, -2));
}

CategoryHeader::CategoryHeader(AppModel& model, const Category& category)
    : m_model(model)
    , m_category(category)
    , m_mark(new CategoryMark(category.kind))
    , m_name(new NameField)
    , m_color(new ColorChoice(offeredColors()))
    , m_delete(makeDelete()) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 2, 0);
    row->setSpacing(0);
    row->addWidget(m_mark);
    row->addSpacing(gap - textIndent);
    row->addWidget(m_name, 1);
    row->addSpacing(gap - ColorChoice::bleed);
    row->addWidget(m_color);
    row->addSpacing(gap + 4 - ColorChoice::bleed);
    row->addWidget(m_delete);
    refresh();
    connect(m_name, &NameField::edited, this, &CategoryHeader::storeName);
    connect(m_color, &ColorChoice::hexChosen, this, &CategoryHeader::storeColor);
    connect(m_delete, &QToolButton::clicked, this, &CategoryHeader::deleteAsked);
}

void CategoryHeader::setRecord(const Category& category) {
    if (m_category != category) {
        m_category = category;
        refresh();
    }
}

void CategoryHeader::refresh() {
    m_mark->setColor(colorFromText(m_category.colorHex));
    m_name->setStored(m_category.name);
    m_color->setHex(m_category.colorHex);
    m_delete->setAccessibleDescription(m_category.name);
}

void CategoryHeader::storeName(const QString& name) {
    const Category now = m_category; // which the reload changes
    m_model.updateCategory(now.kind, now.id, name, now.colorHex);
}

void CategoryHeader::storeColor(const QString& hex) {
    const Category now = m_category;
    m_model.updateCategory(now.kind, now.id, now.name, hex);
    refresh(); // what could not be stored is not shown
}

} // namespace kestu
