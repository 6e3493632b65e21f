// SPDX-License-Identifier: GPL-3.0-or-later
//
// The thin owner of one SQLite connection: fixed settings, positional parameters, every failure as one
// error type. It knows nothing of the schema. Owned by the Repository, used from the main thread only.
#pragma once

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace kestu {

/// A storage failure, or a refusal of ours; `description` is what the user sees.
class DatabaseError final : public std::runtime_error {
public:
    explicit DatabaseError(QString text)
        : std::runtime_error(text.toStdString())
        , m_description(std::move(text)) {}

    [[nodiscard]] const QString& description() const noexcept { return m_description; }

private:
    QString m_description;
};

struct SqlNull {
    bool operator==(const SqlNull&) const = default;
};

/// A value bound to a statement's parameter.
using SqlValue = std::variant<std::int64_t, double, QString, SqlNull>;
using SqlValues = std::vector<SqlValue>;

/// `value`, or NULL when it is absent.
template<typename T>
[[nodiscard]] SqlValue sqlValue(const std::optional<T>& value) {
    return value ? SqlValue(*value) : SqlValue(SqlNull{});
}

/// The columns of the row on which a query stands; valid only inside its row reader.
class Row final {
public:
    explicit Row(sqlite3_stmt* statement)
        : m_statement(statement) {}

    [[nodiscard]] bool isNull(int column) const;
    [[nodiscard]] std::int64_t integer(int column) const;
    [[nodiscard]] double real(int column) const;
    [[nodiscard]] QString text(int column) const; // NULL reads as the empty string
    [[nodiscard]] std::optional<std::int64_t> optionalInteger(int column) const;
    [[nodiscard]] std::optional<QString> optionalText(int column) const;

private:
    sqlite3_stmt* m_statement;
};

class Database final {
public:
    enum class Access {
        readWrite, // creates the file where there is none
        readOnly   // an existing file, of which nothing is changed
    };

    /// Opens the file at `path` (":memory:" for none); one to be written is made readable by its owner alone.
    /// @throws DatabaseError "open failed: " and SQLite's message; also where a file to be written cannot be.
    explicit Database(const QString& path, Access access = Access::readWrite);
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs one statement that yields no rows. Returns the connection's last insert row id.
    /// @throws DatabaseError SQLite's message, " — " and `sql`.
    std::int64_t run(const QString& sql, const SqlValues& arguments = {});

    /// How many rows the last run() has changed.
    [[nodiscard]] std::int64_t changedRows() const noexcept;

    /// The rows of one statement, each as `read` makes it, in order.
    /// @throws DatabaseError as run(); the rows read so far are discarded.
    template<typename Read>
    [[nodiscard]] auto query(const QString& sql, const SqlValues& arguments, Read read) const {
        std::vector<decltype(read(std::declval<const Row&>()))> rows;
        forEachRow(sql, arguments, [&](const Row& row) { rows.push_back(read(row)); });
        return rows;
    }

    /// Executes a text that may hold several statements.
    /// @throws DatabaseError with the whole script as its SQL part.
    void executeScript(const QString& sql);

    /// Runs `body` between BEGIN IMMEDIATE and COMMIT and returns its result. When the body throws, or
    /// COMMIT fails, everything is rolled back and that error is thrown. Not to be nested.
    template<typename Body>
    auto transaction(Body body) {
        Transaction guard(*this);
        if constexpr (std::is_void_v<decltype(body())>) {
            body();
            guard.commit();
        } else {
            auto result = body();
            guard.commit();
            return result;
        }
    }

    /// While one lives, this connection's commits are not synced to the disk: a killed process still loses
    /// nothing, a power cut may take what was committed since the last synced commit, which saves what came
    /// before it too. Made and ended outside of transactions. Where it fails, writes are only slower.
    class UnsyncedWrites final {
    public:
        explicit UnsyncedWrites(Database& database) noexcept;
        ~UnsyncedWrites();
        UnsyncedWrites(const UnsyncedWrites&) = delete;
        UnsyncedWrites& operator=(const UnsyncedWrites&) = delete;

    private:
        Database& m_database;
        bool m_wasSynced;
    };

    /// `PRAGMA user_version`; 0 on any failure.
    [[nodiscard]] std::int64_t userVersion() const noexcept;

    /// `PRAGMA data_version`: changes when another connection has committed; 0 on any failure.
    [[nodiscard]] std::int64_t dataVersion() const noexcept;

    /// The absolute path of the opened file, behind symbolic links, where its companions lie; empty for one
    /// in memory.
    [[nodiscard]] QString path() const;

    /// Whether another file, or none, now lies at the path that was opened. SQLite itself goes on writing
    /// into the file that it has open, and nothing fails.
    [[nodiscard]] bool hasMoved() const noexcept;

private:
    class Transaction final {
    public:
        explicit Transaction(Database& database);
        ~Transaction(); // rolls back what was not committed
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        void commit();

    private:
        Database& m_database;
        bool m_committed = false;
    };

    void openForReading();
    void openForWriting();
    void useWriteAheadLog();
    void forEachRow(const QString& sql, const SqlValues& arguments,
                    const std::function<void(const Row&)>& visit) const;

    struct CloseConnection {
        void operator()(sqlite3* handle) const;
    };
    std::unique_ptr<sqlite3, CloseConnection> m_handle;
};

} // namespace kestu
