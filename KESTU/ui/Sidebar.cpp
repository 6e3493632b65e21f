// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Sidebar.h"

#include "app/AppModel.h"
#include "ui/Commands.h"
#include "ui/TrackingStatus.h"
#include "ui/controls/Announcing.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/Roles.h"
#include "ui/parts/Texts.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Theme.h"

#include <QListWidget>
#include <QMenu>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int rowHeight = 32;
constexpr int rowGap = 2;
constexpr int listMargin = 8;
constexpr int badgeRole = Qt::UserRole;
constexpr int iconRole = Qt::UserRole + 1;
constexpr int compactWidth = 80; // of a row: what is narrower has no room for a name

class SidebarRow final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {option.rect.width(), rowHeight + rowGap};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const Colors& colors = colorsOf(option.palette);
        const bool isSelected = option.state & QStyle::State_Selected;
        const QRect row = option.rect.adjusted(0, 0, 0, -rowGap);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        paintBackground(*painter, option, row, colors);
        if (row.width() < compactWidth) {
            paintCompact(*painter, row, index, isSelected, colors);
            painter->restore();
            return;
        }
        QRect inner = row.adjusted(listMargin, 0, -listMargin, 0);
        paintScreenIcon(*painter, QPoint(inner.left(), inner.center().y()), index, isSelected, colors);
        inner.setLeft(inner.left() + metrics::iconSidebar + 8);
        inner.setRight(inner.right() -
                       paintBadge(*painter, inner, index.data(badgeRole).toInt(), isSelected, colors));
        const QFont font = isSelected ? semibold(fontOf(TextStyle::body)) : fontOf(TextStyle::body);
        painter->setFont(font);
        painter->setPen(isSelected ? Qt::white : colors.textPrimary);
        painter->drawText(inner, Qt::AlignLeft | Qt::AlignVCenter,
                          QFontMetrics(font).elidedText(index.data(Qt::DisplayRole).toString(),
                                                        Qt::ElideRight, inner.width()));
        painter->restore();
    }

private:
    /// The icon in the middle, and a badge over its corner.
    static void paintCompact(QPainter& painter, const QRect& row, const QModelIndex& index, bool isSelected,
                             const Colors& colors) {
        const int left = row.center().x() - metrics::iconSidebar / 2 + 1;
        paintScreenIcon(painter, QPoint(left, row.center().y()), index, isSelected, colors);
        const int count = index.data(badgeRole).toInt();
        if (count > 0) {
            paintSmallBadge(painter, QPoint(left + metrics::iconSidebar, row.top() + 2), count, colors);
        }
    }

    static void paintScreenIcon(QPainter& painter, const QPoint& left, const QModelIndex& index,
                                bool isSelected, const Colors& colors) {
        const QRect icon(left.x(), left.y() - metrics::iconSidebar / 2 + 1, metrics::iconSidebar,
                         metrics::iconSidebar);
        paintIcon(painter, icon, index.data(iconRole).toString(),
                  isSelected ? Qt::white : colors.textSecondary);
    }

    /// Around a point of the icon's upper right; what it covers of the icon is not seen through it.
    static void paintSmallBadge(QPainter& painter, const QPoint& at, int count, const Colors& colors) {
        const QFont font = semibold(fontOf(TextStyle::caption2));
        const QString text = count > 99 ? QStringLiteral("99+") : QString::number(count);
        const int width = std::max(16, QFontMetrics(font).horizontalAdvance(text) + 8);
        const QRectF badge(at.x() - 6, at.y(), width, 16);
        painter.setPen(QPen(colors.sidebar, 1.5));
        painter.setBrush(colors.textSecondary);
        painter.drawRoundedRect(badge.adjusted(-0.75, -0.75, 0.75, 0.75), 8.75, 8.75);
        painter.setFont(font);
        painter.setPen(colors.sidebar);
        painter.drawText(badge, Qt::AlignCenter, text);
    }

    static void paintBackground(QPainter& painter, const QStyleOptionViewItem& option, const QRect& row,
                                const Colors& colors) {
        painter.setPen(Qt::NoPen);
        if (option.state & QStyle::State_Selected) {
            painter.setBrush(colors.accentFill);
        } else if (option.state & QStyle::State_MouseOver) {
            painter.setBrush(colors.rowHover);
        } else {
            painter.setBrush(Qt::NoBrush);
        }
        painter.drawRoundedRect(row, metrics::radiusInner, metrics::radiusInner);
        const bool isFocused =
            option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange;
        if (isFocused) {
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(option.state & QStyle::State_Selected ? QColor(Qt::white) : colors.focus,
                                option.state & QStyle::State_Selected ? 1.5 : 2));
            painter.drawRoundedRect(QRectF(row).adjusted(1.5, 1.5, -1.5, -1.5), metrics::radiusInner - 1,
                                    metrics::radiusInner - 1);
        }
    }

    /// The count of waiting suggestions at the row's right; how much width it takes.
    static int paintBadge(QPainter& painter, const QRect& inner, int count, bool isSelected,
                          const Colors& colors) {
        if (count == 0) {
            return 0;
        }
        const QFont font = semibold(fontOf(TextStyle::caption2));
        const QString text = QString::number(count);
        const int width = std::max(20, QFontMetrics(font).horizontalAdvance(text) + 12);
        const QRectF badge(inner.right() + 1 - width, inner.center().y() - 8, width, 18);
        painter.setPen(Qt::NoPen);
        painter.setBrush(isSelected ? QColor(0, 0, 0, 51) : colors.pill);
        painter.drawRoundedRect(badge, 9, 9);
        painter.setFont(font);
        painter.setPen(isSelected ? Qt::white : colors.textSecondary);
        painter.drawText(badge, Qt::AlignCenter, text);
        return width + 8;
    }
};

QListWidget* makeList() {
    auto* list = new QListWidget;
    list->setItemDelegate(new SidebarRow(list));
    list->setFrameShape(QFrame::NoFrame);
    list->setAccessibleName(QStringLiteral("画面"));
    reportCurrentRow(list);
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setMouseTracking(true);
    list->viewport()->setAutoFillBackground(false);
    list->setFixedHeight(static_cast<int>(sidebarEntries.size()) * (rowHeight + rowGap));
    for (const SidebarEntry& entry : sidebarEntries) {
        auto* item = new QListWidgetItem(entry.label.toString(), list);
        item->setData(iconRole, entry.icon.toString());
        item->setToolTip(tipText(entry.label.toString(), keysOf(entry.item)));
    }
    return list;
}

IconButton* makeMenuButton(Commands& commands) {
    auto* button = new IconButton(QStringLiteral("chevron.up"), QStringLiteral("メニュー"));
    auto* menu = new QMenu(button);
    commands.fillWindowMenu(*menu);
    QObject::connect(button, &QAbstractButton::clicked, menu, [button, menu] {
        // Above the button, which stands at the window's foot.
        const QSize size = menu->sizeHint();
        const int left = std::max(button->width() - size.width(), listMargin - button->x());
        menu->popup(button->mapToGlobal(QPoint(left, -size.height() - 4)));
    });
    return button;
}

} // namespace

QKeySequence keysOf(SidebarItem item) {
    return Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + static_cast<int>(item));
}

Sidebar::Sidebar(AppModel& model, Commands& commands)
    : m_model(model)
    , m_list(makeList())
    , m_status(new TrackingStatus(model))
    , m_menu(makeMenuButton(commands))
    , m_foot(new QHBoxLayout) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 12, 0, 0);
    layout->setSpacing(0);
    auto* listRow = new QHBoxLayout;
    listRow->setContentsMargins(listMargin, 0, listMargin, 0);
    listRow->addWidget(m_list);
    layout->addLayout(listRow);
    layout->addStretch();
    m_foot->setContentsMargins(12, 12, 12, 12);
    m_foot->addWidget(m_status, 1);
    m_foot->addWidget(m_menu, 0, Qt::AlignBottom);
    layout->addLayout(m_foot);

    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0) {
            m_model.setScreen(sidebarEntries[static_cast<size_t>(row)].item);
        }
    });
    connect(&m_model, &AppModel::screenChanged, this, &Sidebar::refreshScreen);
    connect(&m_model, &AppModel::suggestionsChanged, this, &Sidebar::refreshBadge);
    refreshScreen();
    refreshBadge();
}

QWidget* Sidebar::screenList() const {
    return m_list;
}

void Sidebar::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), colorsOf(palette()).sidebar);
}

void Sidebar::setCompact(bool compact) {
    if (m_isCompact == compact) {
        return;
    }
    m_isCompact = compact;
    m_status->setCompact(compact);
    m_foot->setDirection(compact ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    m_foot->setStretchFactor(m_status, compact ? 0 : 1);
    m_foot->setAlignment(m_status, compact ? Qt::AlignHCenter : Qt::Alignment());
    m_foot->setAlignment(m_menu, compact ? Qt::AlignHCenter : Qt::AlignBottom);
    refreshHelp();
}

void Sidebar::refreshHelp() {
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem* item = m_list->item(row);
        const QString badge = item->data(Qt::AccessibleDescriptionRole).toString();
        const QString name = badge.isEmpty() ? item->text() : item->text() + u'\n' + badge;
        item->setToolTip(m_isCompact ? name : QString());
    }
}

void Sidebar::refreshScreen() {
    m_list->setCurrentRow(static_cast<int>(m_model.screen()));
}

void Sidebar::refreshBadge() {
    const int count = static_cast<int>(m_model.suggestions().size());
    QListWidgetItem* item = m_list->item(static_cast<int>(SidebarItem::projects));
    if (item->data(badgeRole) == count) {
        return;
    }
    const QString spoken = count > 0 ? QStringLiteral("提案 %1 件").arg(count) : QString();
    item->setData(badgeRole, count);
    item->setData(Qt::AccessibleDescriptionRole, spoken);
    refreshHelp();
    announce(*this, count > 0 ? spoken : QStringLiteral("提案なし"));
}

} // namespace kestu
