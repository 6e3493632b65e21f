// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/FlowLayout.h"

#include <QWidget>
#include <algorithm>
#include <limits>

namespace kestu {
namespace {

constexpr int unbounded = std::numeric_limits<int>::max();

} // namespace

std::vector<FlowRow> flowRows(const std::vector<QSize>& sizes, int maximumWidth, int spacing) {
    std::vector<FlowRow> rows(1);
    for (std::size_t index = 0; index < sizes.size(); ++index) {
        const QSize size = sizes[index];
        int gap = rows.back().indices.empty() ? 0 : spacing;
        if (!rows.back().indices.empty() && rows.back().width + spacing + size.width() > maximumWidth) {
            const int below = rows.back().y + rows.back().height + spacing;
            rows.push_back({.indices = {}, .y = below, .width = 0, .height = 0});
            gap = 0;
        }
        FlowRow& row = rows.back();
        row.indices.push_back(index);
        row.width += gap + size.width();
        row.height = std::max(row.height, size.height());
    }
    return rows;
}

QSize flowSize(const std::vector<FlowRow>& rows) {
    int width = 0;
    for (const FlowRow& row : rows) {
        width = std::max(width, row.width);
    }
    return {width, rows.back().y + rows.back().height};
}

FlowLayout::FlowLayout(int spacing, QWidget* parent)
    : QLayout(parent) {
    setSpacing(spacing);
    setContentsMargins(0, 0, 0, 0);
}

FlowLayout::~FlowLayout() = default;

void FlowLayout::addItem(QLayoutItem* item) {
    m_items.emplace_back(item);
}

int FlowLayout::count() const {
    return static_cast<int>(m_items.size());
}

QLayoutItem* FlowLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? m_items[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    if (index < 0 || index >= count()) {
        return nullptr;
    }
    const auto taken = m_items.begin() + index;
    QLayoutItem* const item = taken->release();
    m_items.erase(taken);
    return item;
}

Qt::Orientations FlowLayout::expandingDirections() const {
    return {};
}

bool FlowLayout::hasHeightForWidth() const {
    return true;
}

std::vector<QLayoutItem*> FlowLayout::shownItems() const {
    std::vector<QLayoutItem*> shown;
    for (const auto& item : m_items) {
        if (!item->isEmpty()) {
            shown.push_back(item.get());
        }
    }
    return shown;
}

std::vector<FlowRow> FlowLayout::rowsWithin(int width) const {
    std::vector<QSize> sizes;
    for (const QLayoutItem* const item : shownItems()) {
        sizes.push_back(item->sizeHint());
    }
    return flowRows(sizes, width, spacing());
}

int FlowLayout::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    const int inner = width - margins.left() - margins.right();
    return flowSize(rowsWithin(inner)).grownBy(margins).height();
}

QSize FlowLayout::sizeHint() const {
    return flowSize(rowsWithin(unbounded)).grownBy(contentsMargins());
}

QSize FlowLayout::minimumSize() const {
    int widest = 0;
    int highest = 0;
    for (const QLayoutItem* const item : shownItems()) {
        widest = std::max(widest, item->minimumSize().width());
        highest = std::max(highest, item->sizeHint().height());
    }
    return QSize(widest, highest).grownBy(contentsMargins());
}

void FlowLayout::setGeometry(const QRect& bounds) {
    QLayout::setGeometry(bounds);
    const QRect inner = bounds.marginsRemoved(contentsMargins());
    const std::vector<QLayoutItem*> items = shownItems();
    for (const FlowRow& row : rowsWithin(inner.width())) {
        int x = inner.left();
        for (const std::size_t index : row.indices) {
            const QSize size = items[index]->sizeHint();
            items[index]->setGeometry(QRect(QPoint(x, inner.top() + row.y), size));
            x += size.width() + spacing();
        }
    }
}

} // namespace kestu
