// SPDX-License-Identifier: GPL-3.0-or-later
//
// Name and colour of the next project or tag. It belongs to the screen of categories, which says the kind.
#pragma once

#include "storage/Records.h"
#include "ui/controls/DraftHolder.h"

#include <QWidget>

class QLineEdit;
class QPushButton;

namespace kestu {

class AppModel;
class Composition;
class ColorChoice;

class AddCategoryRow final : public QWidget, public DraftHolder {
    Q_OBJECT

public:
    explicit AddCategoryRow(AppModel& model);

    /// Each kind keeps the name that was half-typed for it.
    void setKind(CategoryKind kind);
    [[nodiscard]] bool holdsDraft() const override;

private:
    [[nodiscard]] QString typed() const;
    void refresh();
    void add();

    AppModel& m_model;
    CategoryKind m_kind = CategoryKind::project;
    QString m_nameOfOtherKind;
    QLineEdit* m_name;
    Composition* m_composition;
    ColorChoice* m_color;
    QPushButton* m_add;
};

} // namespace kestu
