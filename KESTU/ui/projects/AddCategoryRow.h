// SPDX-License-Identifier: GPL-3.0-or-later
//
// Name and colour of the next project or tag. It belongs to the screen of categories, which says the kind.
#pragma once

#include "storage/Records.h"

#include <QWidget>

class QLineEdit;
class QPushButton;

namespace kestu {

class AppModel;
class ColorChoice;

class AddCategoryRow final : public QWidget {
    Q_OBJECT

public:
    explicit AddCategoryRow(AppModel& model);

    void setKind(CategoryKind kind);

private:
    void refresh();
    void add();

    AppModel& m_model;
    CategoryKind m_kind = CategoryKind::project;
    QLineEdit* m_name;
    ColorChoice* m_color;
    QPushButton* m_add;
};

} // namespace kestu
