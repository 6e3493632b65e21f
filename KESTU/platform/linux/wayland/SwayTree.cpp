// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/SwayTree.h"

#include "platform/linux/wayland/LocalSocket.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstring>
#include <utility>

namespace kestu {
namespace {

// Each message begins so, then come the length of its content and its kind, in the machine's byte order.
constexpr QByteArrayView magic("i3-ipc");
constexpr std::uint32_t getTree = 4;

// Thousands of windows; whatever claims more is no tree.
constexpr std::uint32_t longestAnswer = 64U << 20U;

struct Header {
    std::uint32_t length = 0;
    std::uint32_t kind = 0;
};

constexpr qsizetype headerSize = magic.size() + qsizetype{sizeof(Header)};

QByteArray question(std::uint32_t kind) {
    const Header header{.kind = kind};
    return magic.toByteArray() + QByteArray(reinterpret_cast<const char*>(&header), sizeof header);
}

QByteArray contentOf(LocalSocket& socket, const QDeadlineTimer& deadline) {
    const QByteArray head = socket.receive(headerSize, deadline);
    Header header;
    if (head.size() != headerSize || !head.startsWith(magic)) {
        return {};
    }
    std::memcpy(&header, head.constData() + magic.size(), sizeof header);
    return header.kind == getTree && header.length <= longestAnswer
               ? socket.receive(static_cast<qsizetype>(header.length), deadline)
               : QByteArray();
}

SwayTree::Window windowOf(const QJsonObject& node) {
    const QString ofX11 =
        node.value(QStringLiteral("window_properties")).toObject().value(QStringLiteral("class")).toString();
    return {.processId = node.value(QStringLiteral("pid")).toInteger(),
            .appId = node.value(QStringLiteral("app_id")).toString(ofX11),
            .keepsDisplayOn = node.value(QStringLiteral("inhibit_idle")).toBool()};
}

void readNode(const QJsonObject& node, SwayTree::Answer& answer) {
    if (node.contains(QStringLiteral("pid"))) { // else an output, a workspace, or a group of windows
        const SwayTree::Window window = windowOf(node);
        answer.isDisplayKeptOn = answer.isDisplayKeptOn || window.keepsDisplayOn;
        if (node.value(QStringLiteral("focused")).toBool()) {
            answer.focused = window;
        }
    }
    for (const QString& kind : {QStringLiteral("nodes"), QStringLiteral("floating_nodes")}) {
        for (const auto& child : node.value(kind).toArray()) {
            readNode(child.toObject(), answer);
        }
    }
}

} // namespace

SwayTree::SwayTree(QString socket)
    : m_socket(std::move(socket)) {}

std::optional<SwayTree::Answer> SwayTree::ask(const QDeadlineTimer& deadline) {
    if (!isThere() || m_isSilent) {
        return std::nullopt;
    }
    LocalSocket socket(m_socket);
    const bool isAsked = socket.send(question(getTree), deadline);
    const QJsonDocument tree =
        isAsked ? QJsonDocument::fromJson(contentOf(socket, deadline)) : QJsonDocument();
    if (!tree.isObject()) {
        m_isSilent = true;
        return std::nullopt;
    }
    Answer answer;
    readNode(tree.object(), answer);
    return answer;
}

} // namespace kestu
