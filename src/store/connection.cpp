#include "store/connection.h"

#include "store/database_words.h"

#include <QCoreApplication>
#include <QDir>
#include <QScopeGuard>

#include <sqlite3.h>

#include <limits>
#include <utility>

namespace varnholt {

namespace {

constexpr int idleMs = 1000;

} // namespace

Connection::Connection()
{
    idle_.setSingleShot(true);
    idle_.setInterval(idleMs);
    QObject::connect(&idle_, &QTimer::timeout, &idle_, [this] { settle(); });
}

Recordset::Recordset(sqlite3* database, sqlite3_stmt* statement)
    : database_(database)
    , statement_(statement)
{}

Recordset::Recordset(Recordset&& other) noexcept
    : database_(other.database_)
    , statement_(std::exchange(other.statement_, nullptr))
{}

Recordset::~Recordset()
{
    sqlite3_finalize(statement_);
}

bool Recordset::next()
{
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result != SQLITE_DONE) {
        throw DatabaseError(WhatHappened(database_));
    }
    return false;
}

int Recordset::field(const char* name) const
{
    const int count = sqlite3_column_count(statement_);
    for (int i = 0; i < count; ++i) {
        if (sqlite3_stricmp(sqlite3_column_name(statement_, i), name) == 0) {
            return i;
        }
    }
    throw DatabaseError(
        Connection::tr("The result has no field \"%1\".").arg(QString::fromUtf8(name)));
}

std::int32_t Recordset::integer(int field) const
{
    const sqlite3_int64 value = sqlite3_column_int64(statement_, field);
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
        throw DatabaseError(Connection::tr("The number %1 is too large for a key.").arg(value));
    }
    return static_cast<std::int32_t>(value);
}

QString Recordset::text(int field) const
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, field));
    const int size = sqlite3_column_bytes(statement_, field);
    const QByteArrayView view(bytes, bytes ? size : 0);
    if (view != lastBytes_) {
        lastBytes_.resize(0);
        lastBytes_.append(view);
        lastText_ = QString::fromUtf8(view);
        // Taken for the mark at the start of a file and dropped, but it belongs to the text.
        if (view.startsWith("\xef\xbb\xbf")) {
            lastText_.prepend(QChar(QChar::ByteOrderMark));
        }
    }
    return lastText_;
}

Connection::~Connection()
{
    close();
}

void Connection::close()
{
    settle();
    idle_.stop();
    sqlite3_close_v2(std::exchange(database_, nullptr));
    mergedCopy_.reset();
}

bool Connection::settle()
{
    idle_.stop();
    if (!database_ || isReadOnly()) {
        return true;
    }
    // Waiting for another reader would stop the window.
    sqlite3_busy_timeout(database_, 0);
    const int result =
        sqlite3_wal_checkpoint_v2(database_, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    sqlite3_busy_timeout(database_, busyTimeoutMs);
    if (result != SQLITE_OK) {
        settleWhenIdle();
    }
    return result == SQLITE_OK;
}

bool Connection::isSound(const std::atomic<bool>& stop)
{
    requireOpen();
    constexpr int stepsBetweenLooks = 10'000;
    sqlite3_progress_handler(
        database_, stepsBetweenLooks,
        [](void* flag) { return static_cast<const std::atomic<bool>*>(flag)->load() ? 1 : 0; },
        const_cast<std::atomic<bool>*>(&stop));
    const auto lookNoMore =
        qScopeGuard([this] { sqlite3_progress_handler(database_, 0, nullptr, nullptr); });
    try {
        // The quick check would not compare an index with its table.
        Recordset findings = read(QStringLiteral("PRAGMA integrity_check(1)"));
        return findings.next() && findings.text(0) == QStringLiteral("ok");
    } catch (const DatabaseError&) {
        if (stop) {
            return true;
        }
        throw;
    }
}

void Connection::settleWhenIdle()
{
    if (QCoreApplication::instance()) {
        idle_.start();
    }
}

bool Connection::isReadOnly() const
{
    return database_ && sqlite3_db_readonly(database_, "main") == 1;
}

void Connection::requireInPlace() const
{
    requireOpen();
    int moved = 0;
    sqlite3_file_control(database_, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    if (moved) {
        throw DatabaseError(tr("The question library has been moved or deleted:\n%1")
                                .arg(QDir::toNativeSeparators(path_)));
    }
}

void Connection::execute(const QString& statement)
{
    requireInPlace();
    run(statement.toUtf8().constData());
    if (sqlite3_get_autocommit(database_)) {
        settleWhenIdle();
    }
}

Recordset Connection::read(const QString& statement)
{
    requireOpen();
    const QByteArray sql = statement.toUtf8();
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(database_, sql.constData(), static_cast<int>(sql.size()) + 1, &prepared,
                           nullptr) != SQLITE_OK) {
        fail();
    }
    return Recordset(database_, prepared);
}

void Connection::requireOpen() const
{
    if (!database_) {
        throw DatabaseError(tr("The question library is not open."));
    }
}

void Connection::run(const char* sql)
{
    requireOpen();
    if (sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail();
    }
}

void Connection::fail() const
{
    throw DatabaseError(WhatHappened(database_));
}

Transaction::Transaction(Connection& connection)
    : connection_(connection)
{
    connection_.run("BEGIN IMMEDIATE");
}

Transaction::~Transaction()
{
    if (open_ && connection_.database_) {
        sqlite3_exec(connection_.database_, "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void Transaction::commit()
{
    connection_.run("COMMIT");
    open_ = false;
    connection_.settleWhenIdle();
}

} // namespace varnholt
