// SPDX-License-Identifier: GPL-3.0-or-later
//
// SIGTERM, SIGINT and SIGHUP as a Qt signal, so that ending the session or pressing Ctrl-C ends KESTU in
// order. One at a time in a process; owned by main.
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace kestu {

class TerminationSignals final : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void terminationRequested();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace kestu
