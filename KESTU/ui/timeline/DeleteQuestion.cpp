// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/DeleteQuestion.h"

#include "app/AppModel.h"
#include "ui/controls/Alert.h"
#include "ui/timeline/SliceTexts.h"

namespace kestu {

void askToDelete(QWidget& window, AppModel& model, const ResolvedActivity& item) {
    const std::vector<AlertButton> buttons{
        {.text = QStringLiteral("キャンセル"), .part = AlertButton::Part::cancel, .role = {}},
        {.text = QStringLiteral("削除"),
         .part = AlertButton::Part::other,
         .role = ButtonRole::destructiveFilled}};
    auto* question =
        Alert::ask(&window, QStringLiteral("この区間を削除しますか？"),
                   activityName(item, model) + QStringLiteral("\n削除すると元に戻せません。"), buttons);
    QObject::connect(question, &Alert::answered, question, [&model, id = item.activity.id](int index) {
        if (index == 1) {
            model.deleteActivity(id);
        }
    });
}

} // namespace kestu
