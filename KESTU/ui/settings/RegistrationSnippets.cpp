// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/RegistrationSnippets.h"

namespace kestu {

QString registrationCommand(const QString& server) {
    return QStringLiteral("claude mcp add --scope user kestu -- \"") + server + u'"';
}

QString registrationJson(const QString& server) {
    return QStringLiteral("{\n"
                          "  \"mcpServers\": {\n"
                          "    \"kestu\": {\n"
                          "      \"command\": \"") +
           server +
           QStringLiteral("\"\n"
                          "    }\n"
                          "  }\n"
                          "}");
}

} // namespace kestu
