// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Schema.h"

#include "storage/Database.h"

#include <QStringBuilder>

#include <array>

namespace kestu {
namespace {

// Steps that have shipped are never edited: files out there have run them as they stand.

constexpr QStringView activitiesProjectsAndRules = uR"(CREATE TABLE activity (
id INTEGER PRIMARY KEY,
start REAL NOT NULL,
end REAL NOT NULL,
bundle_id TEXT NOT NULL,
app_name TEXT NOT NULL,
title TEXT NOT NULL DEFAULT '',
url TEXT,
domain TEXT,
project_id INTEGER REFERENCES project(id) ON DELETE SET NULL
);
CREATE INDEX activity_start ON activity(start);
CREATE INDEX activity_end ON activity(end);
CREATE TABLE project (
id INTEGER PRIMARY KEY,
name TEXT NOT NULL,
color TEXT NOT NULL,
sort INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE rule (
id INTEGER PRIMARY KEY,
project_id INTEGER NOT NULL REFERENCES project(id) ON DELETE CASCADE,
field TEXT NOT NULL,
op TEXT NOT NULL,
value TEXT NOT NULL,
sort INTEGER NOT NULL DEFAULT 0
);
)";

constexpr QStringView manualEntriesAndTags =
    uR"(ALTER TABLE activity ADD COLUMN is_manual INTEGER NOT NULL DEFAULT 0;
CREATE TABLE tag (
id INTEGER PRIMARY KEY,
name TEXT NOT NULL,
color TEXT NOT NULL,
sort INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE activity_tag (
activity_id INTEGER NOT NULL REFERENCES activity(id) ON DELETE CASCADE,
tag_id INTEGER NOT NULL REFERENCES tag(id) ON DELETE CASCADE,
PRIMARY KEY (activity_id, tag_id)
);
CREATE TABLE rule_v2 (
id INTEGER PRIMARY KEY,
project_id INTEGER REFERENCES project(id) ON DELETE CASCADE,
tag_id INTEGER REFERENCES tag(id) ON DELETE CASCADE,
field TEXT NOT NULL,
op TEXT NOT NULL,
value TEXT NOT NULL,
sort INTEGER NOT NULL DEFAULT 0,
CHECK ((project_id IS NULL) <> (tag_id IS NULL))
);
INSERT INTO rule_v2 (id, project_id, field, op, value, sort)
SELECT id, project_id, field, op, value, sort FROM rule;
DROP TABLE rule;
ALTER TABLE rule_v2 RENAME TO rule;
)";

constexpr QStringView suggestionsAndNotes = uR"(CREATE TABLE rule_suggestion (
id INTEGER PRIMARY KEY,
target_kind TEXT NOT NULL,
target_name TEXT NOT NULL,
field TEXT NOT NULL,
op TEXT NOT NULL,
value TEXT NOT NULL,
reason TEXT NOT NULL DEFAULT '',
created_at REAL NOT NULL
);
CREATE TABLE daily_note (
day TEXT PRIMARY KEY,
summary TEXT NOT NULL,
author TEXT NOT NULL DEFAULT 'user',
updated_at REAL NOT NULL
);
)";

struct Step {
    int version; // of the file, once the step has run
    QStringView script;
};

constexpr std::array steps{Step{1, activitiesProjectsAndRules}, Step{2, manualEntriesAndTags},
                           Step{currentSchemaVersion, suggestionsAndNotes}};

void runStep(Database& database, const Step& step) {
    if (database.userVersion() >= step.version) {
        return; // without the write lock, which another process may hold
    }
    database.transaction([&] {
        // Again under the lock: another process may have migrated the file meanwhile.
        if (database.userVersion() < step.version) {
            database.executeScript(step.script.toString());
            database.executeScript(QStringLiteral("PRAGMA user_version = %1").arg(step.version));
        }
    });
}

std::int64_t firstInteger(const Database& database, const QString& sql) {
    return database.query(sql, {}, [](const Row& row) { return row.integer(0); }).at(0);
}

/// `activity_length` comes back where an older KESTU has opened the file since.
bool isTuned(const Database& database, const QString& longEnds) {
    const auto found = database.query(
        QStringLiteral("SELECT sql FROM sqlite_master WHERE type = 'index' AND name IN ('activity_end', "
                       "'activity_length')"),
        {}, [](const Row& row) { return row.text(0); });
    return found == std::vector{longEnds};
}

} // namespace

void migrate(Database& database) {
    for (const Step& step : steps) {
        runStep(database, step);
    }
}

bool isLargeFile(const Database& database) {
    // An index over a file of this size takes about a third of a second on a slow disk.
    constexpr std::int64_t largeBytes = std::int64_t{64} * 1024 * 1024;
    return firstInteger(database, QStringLiteral("PRAGMA page_count")) *
               firstInteger(database, QStringLiteral("PRAGMA page_size")) >
           largeBytes;
}

void tuneIndexes(Database& database, const std::function<void()>& onLongStep) {
    if (database.userVersion() != currentSchemaVersion) {
        return;
    }
    const QString longEnds = u"CREATE INDEX activity_end ON activity(end) WHERE " % isLongActivity;
    try {
        if (isTuned(database, longEnds)) {
            return;
        }
        if (onLongStep && isLargeFile(database)) {
            onLongStep();
        }
        database.transaction([&] {
            if (!isTuned(database, longEnds)) { // another process may have been first
                database.executeScript(u"DROP INDEX IF EXISTS activity_length;"
                                       "DROP INDEX IF EXISTS activity_end;" %
                                       longEnds);
            }
        });
    } catch (const DatabaseError&) {
        // A full disk or a lock held elsewhere must not keep the user from the records: reads do without
        // the index, and the next opening tries again. Damage is not hidden by this: without the index
        // every read passes over the whole table and reports the page on which building it stopped.
    }
}

} // namespace kestu
