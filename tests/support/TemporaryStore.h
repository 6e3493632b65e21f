// SPDX-License-Identifier: GPL-3.0-or-later
//
// A store in a temporary folder, and what tests of it have in common.
#pragma once

#include "storage/RepositoryOpener.h"
#include "storage/Schema.h"

#include <QTemporaryDir>

#include <memory>
#include <string>

namespace kestu::test {

/// What `action` says when it fails with a DatabaseError; empty when it succeeds.
template<typename Action>
std::string failureOf(Action action) {
    try {
        action();
        return {};
    } catch (const DatabaseError& error) {
        return error.what();
    }
}

/// The rows of `sql`, a line each, columns separated by "|", NULL as "∅".
inline std::string dump(const Database& database, const QString& sql, int columns = 1) {
    const auto lines = database.query(sql, {}, [columns](const Row& row) {
        QStringList texts;
        for (int column = 0; column < columns; ++column) {
            texts += row.isNull(column) ? QStringLiteral("∅") : row.text(column);
        }
        return texts.join(u'|');
    });
    return QStringList(lines.begin(), lines.end()).join(u'\n').toStdString();
}

/// A fresh store at the current schema, opened as the application opens it. Its clock stands at `now`.
struct TemporaryStore {
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("store.sqlite"));
    Instant now = instantAt(1772636400.0);
    std::unique_ptr<Repository> repository = open();

    [[nodiscard]] std::unique_ptr<Repository> open() {
        auto opened = openRepository({.explicitPath = path, .dataHome = {}}, [this] { return now; });
        // The file need not survive a power cut, and a test that writes much waits for no disk.
        opened->database().executeScript(QStringLiteral("PRAGMA synchronous = OFF"));
        return opened;
    }
    Repository* operator->() const { return repository.get(); }
    void execute(const QString& sql) const { repository->database().executeScript(sql); }
    [[nodiscard]] std::string dump(const QString& sql, int columns = 1) const {
        return test::dump(repository->database(), sql, columns);
    }
};

} // namespace kestu::test
