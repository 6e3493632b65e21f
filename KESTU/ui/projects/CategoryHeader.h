// SPDX-License-Identifier: GPL-3.0-or-later
//
// The head of a category's card: its colour mark, its name and colours to be changed in place, and what
// deletes it. It belongs to the card.
#pragma once

#include "ui/projects/Category.h"

#include <QWidget>

class QToolButton;

namespace kestu {

class AppModel;
class ColorChoice;
class NameField;

/// A dot for a project, a label for a tag, in its colour.
class CategoryMark final : public QWidget {
    Q_OBJECT

public:
    explicit CategoryMark(CategoryKind kind);

    void setColor(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    CategoryKind m_kind;
    QColor m_color;
};

class CategoryHeader final : public QWidget {
    Q_OBJECT

public:
    CategoryHeader(AppModel& model, const Category& category);

    void setRecord(const Category& category);

Q_SIGNALS:
    void deleteAsked();

private:
    void refresh();
    void storeName(const QString& name);
    void storeColor(const QString& hex);

    AppModel& m_model;
    Category m_category;
    CategoryMark* m_mark;
    NameField* m_name;
    ColorChoice* m_color;
    QToolButton* m_delete;
};

} // namespace kestu
