// SPDX-License-Identifier: GPL-3.0-or-later
//
// The socket at which sway answers questions, in a thread of its own.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <thread>

namespace kestu::test {

class FakeSway final {
public:
    explicit FakeSway(const QString& path)
        : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        const QByteArray name = QFile::encodeName(path);
        std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
        (void)::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        (void)::listen(m_socket, 8);
        m_thread = std::thread([this] { serve(); });
    }

    ~FakeSway() {
        ::shutdown(m_socket, SHUT_RDWR);
        m_thread.join();
        ::close(m_socket);
    }
    FakeSway(const FakeSway&) = delete;
    FakeSway& operator=(const FakeSway&) = delete;

    /// What it says from now on, byte for byte. While that is empty it says nothing and hangs.
    void says(const QByteArray& bytes) {
        const std::lock_guard lock(m_mutex);
        m_bytes = bytes;
    }

    /// A tree of one focused window and one behind it.
    void shows(const QByteArray& appId, int processId, bool frontInhibits, bool otherInhibits = false) {
        const auto text = [](bool value) { return QByteArray(value ? "true" : "false"); };
        says(message(R"({"focused":false,"nodes":[{"type":"workspace","nodes":[{"focused":true,"app_id":)" +
                     appId + R"(,"window_properties":{"class":"XTerm"},"pid":)" +
                     QByteArray::number(processId) + R"(,"inhibit_idle":)" + text(frontInhibits) +
                     R"(}],"floating_nodes":[{"focused":false,"pid":7,"app_id":"other","inhibit_idle":)" +
                     text(otherInhibits) + "}]}]}"));
    }

    static QByteArray message(const QByteArray& content, std::uint32_t claimed = 0) {
        const std::array<std::uint32_t, 2> header{
            claimed != 0 ? claimed : static_cast<std::uint32_t>(content.size()), 4};
        return "i3-ipc" + QByteArray(reinterpret_cast<const char*>(header.data()), sizeof header) + content;
    }

    [[nodiscard]] int questions() const { return m_questions; }

private:
    void serve() {
        int client = -1;
        while (const int next = ::accept(m_socket, nullptr, nullptr)) {
            ::close(client); // one that hangs keeps the last one open
            if (next < 0) {
                return;
            }
            client = next;
            std::array<char, 14> question{};
            if (::recv(client, question.data(), question.size(), MSG_WAITALL) == 14) {
                ++m_questions;
            }
            const std::lock_guard lock(m_mutex);
            for (qsizetype sent = 0; sent < m_bytes.size();) {
                const auto taken = ::send(client, m_bytes.constData() + sent,
                                          static_cast<std::size_t>(m_bytes.size() - sent), MSG_NOSIGNAL);
                if (taken <= 0) {
                    break;
                }
                sent += taken;
            }
        }
    }

    int m_socket;
    std::mutex m_mutex;
    QByteArray m_bytes;
    std::atomic<int> m_questions = 0;
    std::thread m_thread;
};

} // namespace kestu::test
