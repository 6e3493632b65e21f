// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/AssistantSection.h"

#include "app/AppModel.h"
#include "ui/controls/FormSection.h"
#include "ui/controls/TextLabel.h"
#include "ui/settings/RegistrationSnippets.h"
#include "ui/theme/KestuStyle.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QPushButton>

namespace kestu {
namespace {

constexpr int buttonGap = 8;

TextLabel* paragraph(const QString& text, TextStyle style, QPalette::ColorRole color) {
    return new TextLabel(text, style, color, Overflow::wrap);
}

TextLabel* makePath(const QString& path) {
    auto* label = new TextLabel(path, TextStyle::caption, ink::secondary, Overflow::elideMiddle);
    label->setFont(monospaced(label->font()));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setCopyable(true);
    return label;
}

} // namespace

AssistantSection::AssistantSection(const AppModel& model)
    : m_command(new QPushButton)
    , m_json(new QPushButton) {
    auto* section = new FormSection(QStringLiteral("AI 連携（MCP）"), Card::Kind::outer);
    section->addRow(
        paragraph(QStringLiteral(
                      "Claude などの AI から、記録の読み取り・ルールの提案・振り分け・手動登録・1日のまとめの"
                      "保存ができます。AI がつながるのは、ここで登録したアプリ（Claude Code・Claude "
                      "デスクトップなど）だけです。"),
                  TextStyle::callout, ink::primary));
    section->addRow(QStringLiteral("MCP サーバー"), makePath(model.assistantServer()));
    section->addRow(makeButtons(model.assistantServer()));
    section->addRow(paragraph(
        QStringLiteral("頼み方の例：「KESTUで今日のまとめを書いて」「先週の未分類を見てルールを提案して」"
                       "「14時から15時は A社と打ち合わせだったので登録して」"),
        TextStyle::caption, ink::secondary));
    section->setFooter(QStringLiteral(
        "提案されたルールは「分類とルール」で承認するまで効きません。アプリを別の場所に移したら"
        "登録し直してください。"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(section);
    showCopied(std::nullopt);
}

QWidget* AssistantSection::makeButtons(const QString& server) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(buttonGap);
    for (QPushButton* button : {m_command, m_json}) {
        setSmall(button);
        layout->addWidget(button);
    }
    layout->addStretch(1);
    connect(m_command, &QPushButton::clicked, this,
            [this, server] { copy(Snippet::command, registrationCommand(server)); });
    connect(m_json, &QPushButton::clicked, this,
            [this, server] { copy(Snippet::json, registrationJson(server)); });
    return row;
}

void AssistantSection::copy(Snippet snippet, const QString& text) {
    QGuiApplication::clipboard()->setText(text);
    showCopied(snippet);
}

void AssistantSection::showCopied(std::optional<Snippet> copied) {
    const QString done = QStringLiteral("コピーしました");
    m_command->setText(copied == Snippet::command ? done : QStringLiteral("Claude Code に登録するコマンド"));
    m_json->setText(copied == Snippet::json ? done : QStringLiteral("Claude デスクトップの設定（JSON）"));
}

void AssistantSection::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) { // which a minimised window's would be
        showCopied(std::nullopt);
    }
    QWidget::hideEvent(event);
}

} // namespace kestu
