// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PlaceholderScreen.h"

#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/Theme.h"

#include <QVBoxLayout>

namespace kestu {

PlaceholderScreen::PlaceholderScreen(const SidebarEntry& entry) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 16, 24, 24);
    layout->addWidget(new TextLabel(entry.label.toString(), TextStyle::title2));
    layout->addWidget(new EmptyState(entry.icon.toString(), QStringLiteral("この画面は準備中です")), 1);
}

} // namespace kestu
