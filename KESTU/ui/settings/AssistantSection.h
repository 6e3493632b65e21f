// SPDX-License-Identifier: GPL-3.0-or-later
//
// What an assistant can do here, and the two texts that register our server with it. The button whose text
// was copied last says so while the screen is shown. It belongs to its parent widget.
#pragma once

#include <QWidget>

class QPushButton;

namespace kestu {

class AppModel;

class AssistantSection final : public QWidget {
    Q_OBJECT

public:
    explicit AssistantSection(const AppModel& model);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    [[nodiscard]] QWidget* makeButtons(const QString& server);
    void copy(const QString& snippet, const QPushButton* button);
    void showCopied(const QPushButton* button);

    QPushButton* m_command;
    QPushButton* m_json;
};

} // namespace kestu
