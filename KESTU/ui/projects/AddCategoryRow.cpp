// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/AddCategoryRow.h"

#include "app/AppModel.h"
#include "base/Text.h"
#include "ui/controls/ColorChoice.h"
#include "ui/controls/Composition.h"
#include "ui/projects/Category.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

namespace kestu {

AddCategoryRow::AddCategoryRow(AppModel& model)
    : m_model(model)
    , m_name(new QLineEdit)
    , m_composition(new Composition(m_name))
    , m_color(new ColorChoice(offeredColors()))
    , m_add(new QPushButton(QStringLiteral("追加"))) {
    constexpr int gap = 12;
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(m_name, 1);
    row->addSpacing(gap - ColorChoice::bleed);
    row->addWidget(m_color);
    row->addSpacing(gap - ColorChoice::bleed);
    row->addWidget(m_add);
    m_color->setHex(offeredColors().constFirst());
    setKind(m_kind);
    refresh();
    connect(m_name, &QLineEdit::textChanged, this, &AddCategoryRow::refresh);
    connect(m_composition, &Composition::changed, this, &AddCategoryRow::refresh);
    connect(m_name, &QLineEdit::returnPressed, this, &AddCategoryRow::add);
    connect(m_add, &QPushButton::clicked, this, &AddCategoryRow::add);
}

void AddCategoryRow::setKind(CategoryKind kind) {
    if (kind != m_kind) {
        m_composition->finish();
        m_kind = kind;
        const QString name = std::exchange(m_nameOfOtherKind, m_name->text());
        m_name->setText(name);
    }
    const bool isProject = kind == CategoryKind::project;
    m_name->setPlaceholderText(isProject ? QStringLiteral("プロジェクト名（例：ソラネコ開発、A社案件）")
                                         : QStringLiteral("タグ名（例：会議、集中、顧客A）"));
    m_name->setAccessibleName(isProject ? QStringLiteral("プロジェクト名") : QStringLiteral("タグ名"));
}

QString AddCategoryRow::typed() const {
    return trimmedWhiteSpace(m_name->text() + m_composition->text());
}

bool AddCategoryRow::holdsDraft() const {
    return !typed().isEmpty() || !trimmedWhiteSpace(m_nameOfOtherKind).isEmpty();
}

void AddCategoryRow::refresh() {
    m_add->setEnabled(!typed().isEmpty());
}

void AddCategoryRow::add() {
    m_composition->finish();
    if (!m_add->isEnabled() || !m_model.createCategory(m_kind, m_name->text(), m_color->hex())) {
        return;
    }
    const QStringList colors = offeredColors();
    const auto count = static_cast<qsizetype>(categoriesOf(m_model, m_kind).size());
    m_color->setHex(colors.at(count % colors.size()));
    m_name->setFocus(); // for the next one; the button is about to be disabled
    m_name->clear();
}

} // namespace kestu
