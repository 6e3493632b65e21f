// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WelcomeSheet.h"

#include "app/AppModel.h"
#include "ui/PermissionBanner.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Theme.h"

#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int sheetWidth = 560;
constexpr int padding = 28;
constexpr int badgeDiameter = 28;
constexpr int iconSize = 56;

/// The circle before a step: its number, or a tick once the step is done.
class StepBadge final : public QWidget {
public:
    explicit StepBadge(int number)
        : m_number(number) {
        setFixedSize(badgeDiameter, badgeDiameter);
        setDone(false);
    }

    void setDone(bool done) {
        m_isDone = done;
        setAccessibleName(done ? QStringLiteral("済み") : QString::number(m_number));
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        const Colors& colors = colorsOf(palette());
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_isDone ? colors.greenFill : colors.orangeFill);
        painter.drawEllipse(rect());
        if (m_isDone) {
            constexpr double inset = (badgeDiameter - metrics::icon) / 2.0;
            paintIcon(painter, QRectF(inset, inset, metrics::icon, metrics::icon), u"checkmark", Qt::white);
            return;
        }
        QFont font = fontOf(TextStyle::callout);
        font.setBold(true);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(rect(), Qt::AlignCenter, QString::number(m_number));
    }

private:
    int m_number;
    bool m_isDone = false;
};

QLayout* makeHeader(const QString& greeting) {
    auto* title = new TextLabel(QStringLiteral("KESTUへようこそ"), TextStyle::title2);
    auto* text = new TextLabel(greeting, TextStyle::body, ink::secondary, Overflow::wrap);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(title);
    texts->addWidget(text);
    auto* header = new QHBoxLayout;
    header->setSpacing(14);
    header->addWidget(new IconView(QStringLiteral("kestu"), iconSize), 0, Qt::AlignVCenter);
    header->addLayout(texts, 1);
    return header;
}

TextLabel* makeBody(const QString& text) {
    return new TextLabel(text, TextStyle::callout, ink::secondary, Overflow::wrap);
}

QLayout* makeStep(StepBadge* badge, const QString& title, TextLabel* body, QWidget* extra = nullptr) {
    auto* texts = new QVBoxLayout;
    texts->setContentsMargins(0, 4, 0, 0);
    texts->setSpacing(6);
    texts->addWidget(new TextLabel(title, TextStyle::headline));
    texts->addWidget(body);
    if (extra) {
        texts->addSpacing(2);
        texts->addWidget(extra, 0, Qt::AlignLeft);
    }
    auto* step = new QHBoxLayout;
    step->setSpacing(14);
    step->addWidget(badge, 0, Qt::AlignTop);
    step->addLayout(texts, 1);
    return step;
}

} // namespace

WelcomeSheet::WelcomeSheet(QWidget* host, AppModel& model)
    : Sheet(host, sheetWidth) {
    setAccessibleName(QStringLiteral("KESTUへようこそ"));
    setDismissable(false);
    auto* first = new StepBadge(1);
    auto* begin = addButton(QStringLiteral("はじめる"), true);
    setFirstFocus(begin);
    footer()->setContentsMargins(padding, 20, padding, padding);

    QVBoxLayout* layout = content();
    layout->setContentsMargins(padding, padding, padding, 0);
    layout->setSpacing(20);
    layout->addLayout(makeHeader(model.words().greeting));
    auto* permission = makeBody({});
    auto* addresses = makeBody({});
    layout->addLayout(makeStep(first, QStringLiteral("ウィンドウ名を記録する許可"), permission,
                               makePermissionButtons(model, 8)));
    layout->addLayout(makeStep(new StepBadge(2), QStringLiteral("ブラウザの URL"), addresses));
    layout->addLayout(
        makeStep(new StepBadge(3), QStringLiteral("AI 連携（あとからでも）"),
                 makeBody(QStringLiteral("設定 →「AI 連携（MCP）」から Claude "
                                         "につなぐと、今日のまとめやルールの提案を頼めます。"))));

    const auto refresh = [first, permission, addresses, &model] {
        first->setDone(model.accessibilityGranted());
        permission->setText(model.words().permissionStep);
        addresses->setText(model.words().addressStep);
    };
    connect(&model, &AppModel::accessibilityGrantedChanged, first, refresh);
    connect(&model, &AppModel::abilitiesChanged, first, refresh);
    refresh();
    connect(begin, &QPushButton::clicked, this, [this, &model] {
        model.setWelcomeShown();
        close();
    });
}

} // namespace kestu
