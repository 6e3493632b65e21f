// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Database.h"

#include "storage/PrivateFiles.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStringBuilder>
#include <QThread>

#include <sqlite3.h>

namespace kestu {
namespace {

/// How long SQLite waits for another process's write lock before a statement fails.
constexpr int busyTimeoutMilliseconds = 3000;

/// What `PRAGMA synchronous` says when each commit is synced (FULL).
constexpr std::int64_t syncedLevel = 2;

QString lastMessage(sqlite3* handle) {
    return handle ? QString::fromUtf8(sqlite3_errmsg(handle)) : QStringLiteral("unknown");
}

DatabaseError failure(sqlite3* handle, const QString& sql) {
    return DatabaseError(lastMessage(handle) % u" — " % sql);
}

DatabaseError openFailure(const QString& message) {
    return DatabaseError(u"open failed: " % message);
}

/// Text is bound up to its first NUL, so one inside it must not pass for the end.
QByteArray boundText(const QString& text) {
    constexpr QChar replacement(QChar::ReplacementCharacter);
    return text.contains(QChar::Null) ? QString(text).replace(QChar::Null, replacement).toUtf8()
                                      : text.toUtf8();
}

/// One prepared statement with its arguments; finalized on every path.
class Statement final {
public:
    Statement(sqlite3* handle, const QString& sql, const SqlValues& arguments)
        : m_handle(handle)
        , m_sql(sql) {
        const bool prepared =
            sqlite3_prepare_v2(handle, sql.toUtf8().constData(), -1, &m_statement, nullptr) == SQLITE_OK;
        if (!prepared || !m_statement) {
            throw failure(handle, sql);
        }
        int parameter = 0;
        for (const SqlValue& argument : arguments) {
            bind(++parameter, argument);
        }
    }
    ~Statement() { sqlite3_finalize(m_statement); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    /// True while there is a row, false at the end.
    [[nodiscard]] bool step() {
        const int result = sqlite3_step(m_statement);
        if (result != SQLITE_ROW && result != SQLITE_DONE) {
            throw failure(m_handle, m_sql);
        }
        return result == SQLITE_ROW;
    }

    [[nodiscard]] Row row() const { return Row(m_statement); }

private:
    // Results of binding are not looked at: an argument too many is harmless, one too few is NULL.
    void bind(int parameter, const SqlValue& argument) {
        if (const auto* integer = std::get_if<std::int64_t>(&argument)) {
            sqlite3_bind_int64(m_statement, parameter, *integer);
        } else if (const auto* real = std::get_if<double>(&argument)) {
            sqlite3_bind_double(m_statement, parameter, *real);
        } else if (const auto* text = std::get_if<QString>(&argument)) {
            // SQLITE_TRANSIENT: SQLite takes a copy.
            sqlite3_bind_text(m_statement, parameter, boundText(*text).constData(), -1, SQLITE_TRANSIENT);
        } else {
            sqlite3_bind_null(m_statement, parameter);
        }
    }

    sqlite3* m_handle;
    const QString& m_sql;
    sqlite3_stmt* m_statement = nullptr;
};

std::int64_t counter(const Database& database, const QString& sql) noexcept {
    try {
        const auto values = database.query(sql, {}, [](const Row& row) { return row.integer(0); });
        return values.empty() ? 0 : values.front();
    } catch (const DatabaseError&) {
        return 0; // what keeps a counter from being read is reported by the next real statement
    }
}

} // namespace

bool Row::isNull(int column) const {
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

std::int64_t Row::integer(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

double Row::real(int column) const {
    return sqlite3_column_double(m_statement, column);
}

QString Row::text(int column) const {
    // The length is that of the text just fetched, so it must be asked for second.
    const auto* utf8 = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    return utf8 ? QString::fromUtf8(utf8, sqlite3_column_bytes(m_statement, column)) : QString();
}

std::optional<std::int64_t> Row::optionalInteger(int column) const {
    return isNull(column) ? std::nullopt : std::optional(integer(column));
}

std::optional<QString> Row::optionalText(int column) const {
    return isNull(column) ? std::nullopt : std::optional(text(column));
}

void Database::CloseConnection::operator()(sqlite3* handle) const {
    sqlite3_close(handle);
}

Database::Database(const QString& path, Access access) {
    const PrivateCreation forTheOwner;
    const int creation = access == Access::readWrite ? SQLITE_OPEN_CREATE : 0;
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(QFile::encodeName(path).constData(), &handle,
                                       SQLITE_OPEN_READWRITE | creation, nullptr);
    m_handle.reset(handle);
    if (result != SQLITE_OK) {
        throw openFailure(lastMessage(handle));
    }
    sqlite3_busy_timeout(handle, busyTimeoutMilliseconds);
    access == Access::readOnly ? openForReading() : openForWriting();
}

/// Not SQLite's own read-only mode, which leaves companion files behind where nobody else has the file open.
void Database::openForReading() {
    executeScript(QStringLiteral("PRAGMA query_only = ON"));
    if (QFile::exists(path() % u"-wal")) {
        // A log that another process left or uses is for that one to write back.
        sqlite3_db_config(m_handle.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    }
}

void Database::openForWriting() {
    // SQLite falls back to reading where it may not write. Capture drops failed writes, so a day would go
    // by unrecorded before anybody noticed.
    if (sqlite3_db_readonly(m_handle.get(), "main") == 1) {
        throw openFailure(QString::fromUtf8(sqlite3_errstr(SQLITE_READONLY)));
    }
    executeScript(QStringLiteral("PRAGMA foreign_keys = ON"));
    if (path().isEmpty()) {
        return; // in memory
    }
    useWriteAheadLog();
    // What the user saves has to outlast a power cut, however SQLite was built.
    executeScript(QStringLiteral("PRAGMA synchronous = FULL"));
    // Only now is it known to be a database. Later companions take the database file's mode.
    for (const auto suffix : {QStringView(), QStringView(u"-wal"), QStringView(u"-shm")}) {
        makeFilePrivate(path() % suffix);
    }
}

/// SQLite does not wait by itself here: of two processes that meet on a new file, one is refused at once.
void Database::useWriteAheadLog() {
    const QString sql = QStringLiteral("PRAGMA journal_mode = WAL");
    const QDeadlineTimer patience(busyTimeoutMilliseconds);
    int result = SQLITE_BUSY;
    while (result == SQLITE_BUSY) {
        result = sqlite3_exec(m_handle.get(), sql.toUtf8().constData(), nullptr, nullptr, nullptr);
        if (result != SQLITE_OK && (result != SQLITE_BUSY || patience.hasExpired())) {
            throw failure(m_handle.get(), sql);
        }
        QThread::msleep(result == SQLITE_BUSY ? 10 : 0);
    }
}

std::int64_t Database::run(const QString& sql, const SqlValues& arguments) {
    Statement statement(m_handle.get(), sql, arguments);
    if (statement.step()) {
        throw failure(m_handle.get(), sql);
    }
    return sqlite3_last_insert_rowid(m_handle.get());
}

std::int64_t Database::changedRows() const noexcept {
    return sqlite3_changes(m_handle.get());
}

void Database::executeScript(const QString& sql) {
    if (sqlite3_exec(m_handle.get(), sql.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw failure(m_handle.get(), sql);
    }
}

void Database::forEachRow(const QString& sql, const SqlValues& arguments,
                          const std::function<void(const Row&)>& visit) const {
    Statement statement(m_handle.get(), sql, arguments);
    while (statement.step()) {
        visit(statement.row());
    }
}

std::int64_t Database::userVersion() const noexcept {
    return counter(*this, QStringLiteral("PRAGMA user_version"));
}

std::int64_t Database::dataVersion() const noexcept {
    return counter(*this, QStringLiteral("PRAGMA data_version"));
}

QString Database::path() const {
    return QString::fromUtf8(sqlite3_db_filename(m_handle.get(), "main"));
}

bool Database::hasMoved() const noexcept {
    int hasMoved = 0;
    sqlite3_file_control(m_handle.get(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    return hasMoved != 0;
}

Database::UnsyncedWrites::UnsyncedWrites(Database& database) noexcept
    : m_database(database)
    , m_wasSynced(counter(database, QStringLiteral("PRAGMA synchronous")) == syncedLevel) {
    if (m_wasSynced) {
        sqlite3_exec(database.m_handle.get(), "PRAGMA synchronous = NORMAL", nullptr, nullptr, nullptr);
    }
}

Database::UnsyncedWrites::~UnsyncedWrites() {
    if (m_wasSynced) {
        sqlite3_exec(m_database.m_handle.get(), "PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
    }
}

Database::Transaction::Transaction(Database& database)
    : m_database(database) {
    // Takes the write lock at once: two writers then wait for each other instead of failing half-way.
    m_database.executeScript(QStringLiteral("BEGIN IMMEDIATE"));
}

Database::Transaction::~Transaction() {
    if (!m_committed) {
        // Its failure says nothing new (SQLite may have rolled back by itself); the first error counts.
        sqlite3_exec(m_database.m_handle.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void Database::Transaction::commit() {
    m_database.executeScript(QStringLiteral("COMMIT"));
    m_committed = true;
}

} // namespace kestu
