#pragma once

#include "store/errors.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>

#include <atomic>
#include <cstdint>
#include <functional>
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
///
/// What was committed is on the disk, at first in a log beside the file (`-wal`). A second after
/// the last change, and on closing, it is brought into the file itself, so that a copy of the
/// file alone is whole. On a network drive there is no such log: it needs memory that only the
/// programs of one machine can share.
class Connection
{
    Q_DECLARE_TR_FUNCTIONS(Connection)

public:
    enum class Access
    {
        Change,  ///< where the file can be changed
        ReadOnly ///< whatever the rights
    };

    Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Opens an existing library file. The file is never created or overwritten. A file that
    /// cannot be written is opened for reading; when changes stand beside it that were not yet
    /// brought into it, a merged copy of both is read. Throws `DatabaseError` with a sentence
    /// that names the path when it is missing, unreadable, not a database, or not a library
    /// (a table or field is missing), and `LibraryBusy` when another program locks it; the
    /// connection is then closed.
    void open(const QString& path, Access access = Access::Change);

    /// Settles and closes the connection; does nothing when it is closed.
    void close();

    [[nodiscard]] bool isOpen() const { return database_ != nullptr; }
    [[nodiscard]] bool isReadOnly() const;
    [[nodiscard]] const QString& path() const { return path_; }

    /// Sends one statement that writes. Throws `DatabaseError`; nothing has changed then.
    void execute(const QString& statement);

    /// Opens a read. Throws `DatabaseError`.
    [[nodiscard]] Recordset read(const QString& statement);

    /// Brings everything committed into the file itself and onto the disk. Does not wait: false
    /// when a transaction or another reader is in the way just now, and then it is tried again
    /// when idle. What was committed is safe either way.
    bool settle();

    /// Throws `DatabaseError` when the file has been moved or deleted since it was opened: changes
    /// must not be swallowed silently.
    void requireInPlace() const;

    /// Reads the whole file; false when it is damaged. A damaged index makes rows disappear
    /// without an error. Ends early, and then true, once `stop` is set. Throws `DatabaseError`.
    [[nodiscard]] bool isSound(const std::atomic<bool>& stop);

    /// Copies the library as it is now, changes beside the file included, to a file that is not
    /// there yet and needs no other. `step` is called now and then; what it throws ends the copy.
    /// The copy is not on the disk yet (see `SyncFile`). Throws `DatabaseError`.
    void copyTo(const QString& path, const std::function<void()>& step = {}) const;
    /// Puts the content of another file in the place of the library's, in one transaction: all of
    /// it or, when it throws `DatabaseError`, nothing. Both have pages of one size. No `Recordset`
    /// and no `Transaction` may be open.
    void replaceBy(const QString& path);

private:
    friend class Statement;
    friend class Transaction;

    /// For how long a statement waits for other programs.
    static constexpr int busyTimeoutMs = 5000;

    int openDatabase(Access access);
    int reopenForReading();
    QString mergeIntoCopy();
    void checkSchema();
    void requireOpen() const;
    void run(const char* sql);
    void settleWhenIdle();
    [[noreturn]] void fail() const;

    sqlite3* database_ = nullptr;
    QString path_;
    QTimer idle_;
    std::unique_ptr<QTemporaryDir> mergedCopy_;
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
