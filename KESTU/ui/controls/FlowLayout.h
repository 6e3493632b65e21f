// SPDX-License-Identifier: GPL-3.0-or-later
//
// Puts its items into rows at their natural sizes, as many in a row as fit. It belongs to its widget and owns
// its items, as every QLayout does.
#pragma once

#include <QLayout>
#include <memory>
#include <vector>

namespace kestu {

struct FlowRow {
    std::vector<std::size_t> indices;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// The rows of items of these sizes; never less than one row. An item that is too wide has a row of its own.
[[nodiscard]] std::vector<FlowRow> flowRows(const std::vector<QSize>& sizes, int maximumWidth, int spacing);

/// What the rows take up together.
[[nodiscard]] QSize flowSize(const std::vector<FlowRow>& rows);

class FlowLayout final : public QLayout {
    Q_OBJECT

public:
    explicit FlowLayout(int spacing = 6, QWidget* parent = nullptr);
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override;
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    [[nodiscard]] Qt::Orientations expandingDirections() const override;
    [[nodiscard]] bool hasHeightForWidth() const override;
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSize() const override;
    void setGeometry(const QRect& bounds) override;

private:
    [[nodiscard]] std::vector<QLayoutItem*> shownItems() const;
    [[nodiscard]] std::vector<FlowRow> rowsWithin(int width) const;

    std::vector<std::unique_ptr<QLayoutItem>> m_items;
};

} // namespace kestu
