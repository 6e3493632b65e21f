// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/DeleteQuestion.h"

#include "app/AppModel.h"
#include "ui/controls/Alert.h"
#include "ui/timeline/SliceTexts.h"

namespace kestu {

void askToDelete(QWidget& window, AppModel& model, const ResolvedActivity& item) {
    auto* question =
        Alert::confirm(&window, QStringLiteral("この区間を削除しますか？"),
                       activityName(item, model) + QStringLiteral("\n削除すると元に戻せません。"),
                       QStringLiteral("キャンセル"), QStringLiteral("削除"));
    QObject::connect(question, &Alert::agreed, question,
                     [&model, id = item.activity.id] { model.deleteActivity(id); });
}

} // namespace kestu
