// SPDX-License-Identifier: GPL-3.0-or-later
//
// What an assistant can do here, and the two texts that register our server with it. The button whose text
// was copied last says so while the screen is shown. It belongs to its parent widget.
#pragma once

#include <QWidget>

#include <optional>

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
    enum class Snippet { command, json };

    [[nodiscard]] QWidget* makeButtons(const QString& server);
    void copy(Snippet snippet, const QString& text);
    void showCopied(std::optional<Snippet> copied);

    QPushButton* m_command;
    QPushButton* m_json;
};

} // namespace kestu
