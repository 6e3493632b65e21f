// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/gallery.h"

#include "storage/Records.h"
#include "ui/controls/Badge.h"
#include "ui/controls/ColorChoice.h"
#include "ui/controls/FlowLayout.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/SegmentedPicker.h"
#include "ui/controls/Stepper.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/SwitchButton.h"
#include "ui/controls/TagChip.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/Icons.h"
#include "ui/theme/KestuStyle.h"

#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

QPushButton* button(const QString& text, ButtonRole role = ButtonRole::standard) {
    auto* made = new QPushButton(text);
    setRole(made, role);
    return made;
}

QPushButton* disabled(QPushButton* made) {
    made->setEnabled(false);
    return made;
}

void addRow(QVBoxLayout& column, const QString& name, const std::vector<QWidget*>& widgets) {
    auto* row = new QHBoxLayout;
    row->setSpacing(12);
    auto* label = new TextLabel(name, TextStyle::caption, ink::secondary);
    label->setFixedWidth(112);
    row->addWidget(label);
    for (QWidget* widget : widgets) {
        row->addWidget(widget);
    }
    row->addStretch();
    column.addLayout(row);
}

void addButtons(QVBoxLayout& column) {
    auto* standard = button(u"保存"_s);
    standard->setDefault(true);
    auto* standardOff = disabled(button(u"保存"_s));
    standardOff->setDefault(true);
    auto* small = button(u"編集"_s);
    setSmall(small);
    auto* withIcon = button(u"手動で追加"_s);
    withIcon->setIcon(iconOf(u"plus"));
    addRow(column, u"ボタン"_s,
           {button(u"登録"_s), disabled(button(u"登録"_s)), small, standard, standardOff,
            button(u"削除"_s, ButtonRole::destructive), button(u"削除"_s, ButtonRole::destructiveFilled),
            withIcon});
    addRow(column, u"アイコン"_s,
           {new IconButton(u"chevron.left"_s, u"前の日"_s, IconButton::Kind::framed),
            new IconButton(u"minus.circle"_s, u"削除"_s)});
}

void addChoices(QVBoxLayout& column) {
    auto* period = new SegmentedPicker(u"期間"_s, {u"日"_s, u"週"_s, u"月"_s});
    auto* on = new SwitchButton(u"記録する"_s);
    on->setChecked(true);
    addRow(column, u"切り替え"_s, {period, on, new SwitchButton(u"記録する"_s)});
    QStringList palette;
    for (const QStringView hex : categoryPalette) {
        palette << hex.toString();
    }
    auto* color = new ColorChoice(palette);
    color->setHex(palette.at(2));
    addRow(column, u"色の選択"_s, {color});
}

void addLabels(QVBoxLayout& column) {
    const QColor red = colorFromText(u"#EB5757"_s);
    auto* chip = new TagChip({.name = u"顧客A"_s, .color = red, .on = true, .note = u"ルール"_s},
                             TagChip::Kind::clickable);
    addRow(column, u"チップ"_s,
           {chip, new TagChip({.name = u"会議"_s, .color = red, .on = false, .note = {}},
                              TagChip::Kind::clickable)});
    addRow(column, u"バッジ"_s,
           {new Badge(Badge::Kind::author, u"AI"_s), new CountBadge(2),
            new Badge(Badge::Kind::fresh, u"新規"_s), new Badge(Badge::Kind::sidebar, u"2"_s),
            new Badge(Badge::Kind::pill, u"docs.google.com"_s)});
}

/// The tray's icons on panels of one colour.
class Panel final : public QWidget {
public:
    explicit Panel(const QColor& color)
        : m_color(color) {
        setFixedSize(212, 40);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), m_color);
        int left = 4;
        for (const QStringView name : {u"clock.fill", u"clock.badge.xmark"}) {
            for (const int size : {16, 22, 24, 32}) {
                trayIconOf(name, std::nullopt).paint(&painter, left, (height() - size) / 2, size, size);
                left += size + 2;
            }
        }
    }

private:
    QColor m_color;
};

void addTray(QVBoxLayout& column) {
    addRow(column, u"トレイ"_s, {new Panel(Qt::white), new Panel(Qt::gray), new Panel(Qt::black)});
}

} // namespace

std::unique_ptr<QWidget> makeGallery() {
    auto gallery = std::make_unique<QWidget>();
    gallery->setFixedWidth(840);
    auto* column = new QVBoxLayout(gallery.get());
    column->setContentsMargins(24, 24, 24, 24);
    column->setSpacing(16);
    addButtons(*column);
    column->addWidget(new Divider);
    addChoices(*column);
    column->addWidget(new Divider);
    addLabels(*column);
    column->addWidget(new Divider);
    addTray(*column);
    return gallery;
}

} // namespace kestu
