// SPDX-License-Identifier: GPL-3.0-or-later
//
// What goes into an exported report, and the three ways out. Owned by the report screen, which does the
// exporting.
#pragma once

#include "app/ReportExport.h"
#include "ui/controls/Surfaces.h"

#include <vector>

class QHBoxLayout;
class QLayout;
class QPushButton;

namespace kestu {

class SwitchButton;

class ExportSection final : public QWidget {
    Q_OBJECT

public:
    explicit ExportSection(QWidget* parent = nullptr);

    [[nodiscard]] const ReportBuilder::Options& options() const { return m_options; }

    /// Whether the report that the options ask for is in the clipboard.
    void setCopied(bool copied);

    /// To the options that it began with.
    void reset();

Q_SIGNALS:
    void optionsChanged();
    void copyRequested();
    void saveRequested(kestu::ReportFormat format);

private:
    [[nodiscard]] QHBoxLayout* makeSwitch(const QString& text, bool ReportBuilder::Options::*option);
    [[nodiscard]] QLayout* makeButtons();

    ReportBuilder::Options m_options;
    std::vector<SwitchButton*> m_switches; // all on at first
    QPushButton* m_copy;
};

} // namespace kestu
