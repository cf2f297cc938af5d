#pragma once

#include "store/errors.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

struct sqlite3;
struct sqlite3_stmt;

namespace varnholt {

/// The rows of one read, walked from the first to the end. Lives no longer than its
/// `Connection`. Fields are found by name without regard to case; look a field up once with
/// `field()` before walking many rows.
class Recordset
{
public:
    Recordset(Recordset&& other) noexcept;
    Recordset& operator=(Recordset&&) = delete;
    ~Recordset();

    /// Steps to the next row (the first on the first call); false after the last.
    /// Throws `DatabaseError`.
    bool next();

    /// Position of a field; throws `DatabaseError` when the result has no such field.
    [[nodiscard]] int field(const char* name) const;

    /// Value of a field of the current row as SQLite converts it: NULL and text read as 0,
    /// fractions are cut. Throws `DatabaseError` when the number does not fit 32 bits.
    [[nodiscard]] std::int32_t integer(int field) const;
    /// NULL reads as the empty text. Any text is accepted; bytes that are not UTF-8 read as
    /// replacement characters.
    [[nodiscard]] QString text(int field) const;

private:
    friend class Connection;
    Recordset(sqlite3* database, sqlite3_stmt* statement);

    sqlite3* database_;
    sqlite3_stmt* statement_;
    /// The text returned last: neighbouring rows often repeat a short answer.
    mutable QByteArray lastBytes_;
    mutable QString lastText_;
};

/// The one connection to the library file. Opened when the frame loads and closed when it
/// unloads; every window shares it. Not thread-safe.
class Connection
{
public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Opens an existing library file. The file is never created or overwritten. A file that
    /// cannot be written is opened for reading. Throws `DatabaseError` with a sentence that
    /// names the path when it is missing, unreadable, not a database, or not a library
    /// (a table or field is missing); the connection is then closed.
    void open(const QString& path);

    /// Closes the connection; does nothing when it is closed.
    void close();

    [[nodiscard]] bool isOpen() const { return database_ != nullptr; }
    [[nodiscard]] bool isReadOnly() const;
    [[nodiscard]] const QString& path() const { return path_; }

    /// Sends one statement that writes. Throws `DatabaseError`; nothing has changed then.
    void execute(const QString& statement);

    /// Opens a read. Throws `DatabaseError`.
    [[nodiscard]] Recordset read(const QString& statement);

private:
    friend class Transaction;

    int reopenForReading();
    void checkSchema();
    void requireOpen() const;
    void run(const char* sql);
    [[noreturn]] void fail() const;

    sqlite3* database_ = nullptr;
    QString path_;
};

/// Several statements seen whole or not at all: rolled back unless committed.
class Transaction
{
public:
    /// Throws `DatabaseError` when none can be started.
    explicit Transaction(Connection& connection);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();

    /// Throws `DatabaseError`; the transaction is then rolled back on destruction.
    void commit();

private:
    Connection& connection_;
    bool open_ = true;
};

} // namespace varnholt
