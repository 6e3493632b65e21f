// SPDX-License-Identifier: GPL-3.0-or-later
//
// What goes into an exported report, and the three ways out. Owned by the report screen, which does the
// exporting.
#pragma once

#include "app/ReportExport.h"
#include "ui/controls/Surfaces.h"

class QHBoxLayout;
class QPushButton;

namespace kestu {

class ExportSection final : public QWidget {
    Q_OBJECT

public:
    explicit ExportSection(QWidget* parent = nullptr);

    [[nodiscard]] const ReportBuilder::Options& options() const { return m_options; }

    /// Whether the report that the options ask for is in the clipboard.
    void setCopied(bool copied);

Q_SIGNALS:
    void optionsChanged();
    void copyRequested();
    void saveRequested(kestu::ReportFormat format);

private:
    [[nodiscard]] QHBoxLayout* makeSwitch(const QString& text, bool ReportBuilder::Options::*option);
    [[nodiscard]] QHBoxLayout* makeButtons();

    ReportBuilder::Options m_options;
    QPushButton* m_copy;
};

} // namespace kestu
