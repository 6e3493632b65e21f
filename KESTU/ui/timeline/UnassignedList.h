// SPDX-License-Identifier: GPL-3.0-or-later
//
// The day's time without a project, by application and site, each to be sorted in the rule sheet. It belongs
// to the side panel and follows the model; a card stays the same while its group does.
#pragma once

#include "ui/parts/KeyedRows.h"

#include <QPointer>
#include <QWidget>

namespace kestu {

class AppModel;
class RuleSheet;
class TextLabel;
class GroupCard;
struct UnassignedGroup;

class UnassignedList final : public QWidget {
    Q_OBJECT

public:
    explicit UnassignedList(AppModel& model, QWidget* parent = nullptr);

Q_SIGNALS:
    void rearranged();

private:
    void refresh();
    [[nodiscard]] GroupCard* makeCard();
    void open(const UnassignedGroup& group);
    void takeFocusBack();

    AppModel& m_model;
    TextLabel* m_total;
    TextLabel* m_empty;
    KeyedRows<GroupCard> m_cards;
    std::size_t m_opened = 0;    // whose sheet is open
    QPointer<RuleSheet> m_sheet; // belongs to the window
};

} // namespace kestu
