// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace kestu {
namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT, SIGHUP};

// A signal handler can reach nothing but a global. What it does is one write, which is safe there.
std::array<int, 2> pipeEnds{-1, -1};

void noteSignal(int) {
    const int error = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    errno = error;
}

void handleWith(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : handledSignals) {
        ::sigaction(signal, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals() {
    if (::pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return; // without a pipe the signals keep their default: the process ends at once
    }
    m_notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        std::array<char, 16> bytes{};
        while (::read(pipeEnds[0], bytes.data(), bytes.size()) > 0) {
        }
        Q_EMIT terminationRequested();
    });
    handleWith(noteSignal);
}

TerminationSignals::~TerminationSignals() {
    if (!m_notifier) {
        return;
    }
    handleWith(SIG_DFL);
    m_notifier.reset();
    for (int& end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

} // namespace kestu
