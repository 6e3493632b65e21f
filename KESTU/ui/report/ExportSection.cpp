// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/ExportSection.h"

#include "ui/controls/FlowLayout.h"
#include "ui/controls/SwitchButton.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/Icons.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace kestu {
namespace {

QVBoxLayout* addGroup(QVBoxLayout& column, int spacing) {
    auto* group = new QVBoxLayout;
    group->setSpacing(spacing);
    column.addLayout(group);
    return group;
}

} // namespace

ExportSection::ExportSection(QWidget* parent)
    : QWidget(parent)
    , m_copy(new QPushButton) {
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    auto* card = new Card;
    outer->addWidget(card);
    auto* column = new QVBoxLayout(card);
    column->setContentsMargins(17, 17, 17, 17);
    column->setSpacing(12);

    auto* heading = addGroup(*column, 4);
    heading->addWidget(new TextLabel(QStringLiteral("書き出し"), TextStyle::headline));
    heading->addWidget(new TextLabel(
        QStringLiteral("Markdown は AI に読ませる前提の形です（集計の決まり・内訳・時系列入り）。CSV は1区間1"
                       "行の生データです。"),
        TextStyle::caption, ink::secondary, Overflow::wrap));
    auto* switches = addGroup(*column, 8);
    switches->addLayout(makeSwitch(QStringLiteral("ウィンドウ名・URL・サイトを含める"),
                                   &ReportBuilder::Options::includeDetails));
    switches->addLayout(makeSwitch(QStringLiteral("時系列（何時から何時まで何をしていたか）を含める"),
                                   &ReportBuilder::Options::includeTimeline));
    column->addLayout(makeButtons());
    setCopied(false);
}

QHBoxLayout* ExportSection::makeSwitch(const QString& text, bool ReportBuilder::Options::*option) {
    auto* button = new SwitchButton(text);
    auto* label = new TextLabel(text);
    button->setLabel(label);
    button->setChecked(m_options.*option);
    m_switches.push_back(button);
    connect(button, &QAbstractButton::toggled, this, [this, option](bool on) {
        m_options.*option = on;
        Q_EMIT optionsChanged();
    });
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(button);
    row->addWidget(label);
    row->addStretch();
    return row;
}

QLayout* ExportSection::makeButtons() {
    auto* markdown = new QPushButton(QStringLiteral("Markdownで保存…"));
    auto* csv = new QPushButton(QStringLiteral("CSVで保存…"));
    connect(m_copy, &QPushButton::clicked, this, &ExportSection::copyRequested);
    connect(markdown, &QPushButton::clicked, this, [this] { Q_EMIT saveRequested(ReportFormat::markdown); });
    connect(csv, &QPushButton::clicked, this, [this] { Q_EMIT saveRequested(ReportFormat::csv); });
    auto* row = new FlowLayout(8);
    for (QPushButton* button : {m_copy, markdown, csv}) {
        row->addWidget(button);
    }
    return row;
}

void ExportSection::reset() {
    for (SwitchButton* button : m_switches) {
        button->setChecked(true);
    }
}

void ExportSection::setCopied(bool copied) {
    m_copy->setText(copied ? QStringLiteral("コピーしました") : QStringLiteral("AI向けレポートをコピー"));
    m_copy->setIcon(iconOf(copied ? u"checkmark" : u"doc.on.doc"));
}

} // namespace kestu
