// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/SaveDialog.h"

#include <QFileDialog>

namespace kestu {
void askWhereToSave(QWidget* owner, const SaveQuestion& question,
                    const std::function<void(const QString& path)>& chosen) {
    const bool isCsv = question.format == ReportFormat::csv;
    auto* dialog = new QFileDialog(
        owner, isCsv ? QStringLiteral("CSVで保存") : QStringLiteral("Markdownで保存"), question.folder,
        isCsv ? QStringLiteral("CSV (*.csv)") : QStringLiteral("Markdown (*.md)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(extensionOf(question.format));
    dialog->setLabelText(QFileDialog::Accept, QStringLiteral("保存"));
    dialog->setLabelText(QFileDialog::Reject, QStringLiteral("キャンセル"));
    dialog->setLabelText(QFileDialog::LookIn, QStringLiteral("場所"));
    dialog->setLabelText(QFileDialog::FileName, QStringLiteral("名前"));
    dialog->setLabelText(QFileDialog::FileType, QStringLiteral("形式"));
    dialog->selectFile(question.fileName);
    QObject::connect(dialog, &QFileDialog::fileSelected, owner, chosen);
    dialog->open();
}

} // namespace kestu
