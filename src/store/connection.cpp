#include "store/connection.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QUrl>

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <limits>
#include <utility>
#include <vector>

namespace varnholt {

namespace {

constexpr int busyTimeoutMs = 5000;

struct TableRule
{
    const char* name;
    std::initializer_list<const char*> fields;
};

const std::array<TableRule, 5> libraryTables{{
    {"Assessments", {"AssessmentNum", "AssessmentName", "Available"}},
    {"Topics", {"TopicID", "Topic", "AssessmentNum", "Available"}},
    {"SubTopics", {"SubtopicNum", "TopicID", "SubTopic", "AssessmentNum", "Available"}},
    {"Questions", {"SOLIndex", "TopicID", "SubTopicNum", "Answer", "AssessmentNum", "Available"}},
    {"History", {"LastID"}},
}};

sqlite3* openFile(const QString& path, int flags, bool immutable)
{
    QUrl url = QUrl::fromLocalFile(path);
    if (immutable) {
        url.setQuery(QStringLiteral("immutable=1"));
    }
    sqlite3* database = nullptr;
    sqlite3_open_v2(url.toEncoded().constData(), &database, flags | SQLITE_OPEN_URI, nullptr);
    return database;
}

/// SQLite opens lazily; only a read tells whether the file is a database.
int touch(sqlite3* database)
{
    return sqlite3_exec(database, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
}

/// The file may be read but not written, or its folder takes no side files.
bool lacksRights(int result)
{
    return result == SQLITE_CANTOPEN || (result & 0xff) == SQLITE_READONLY;
}

QString shown(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

} // namespace

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
        throw DatabaseError(QString::fromUtf8(sqlite3_errmsg(database_)));
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
        QStringLiteral("The result has no field \"%1\".").arg(QString::fromUtf8(name)));
}

std::int32_t Recordset::integer(int field) const
{
    const sqlite3_int64 value = sqlite3_column_int64(statement_, field);
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
        throw DatabaseError(QStringLiteral("The number %1 is too large for a key.").arg(value));
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
    }
    return lastText_;
}

Connection::~Connection()
{
    close();
}

void Connection::open(const QString& path)
{
    close();
    const QFileInfo file(path);
    if (!file.exists()) {
        throw DatabaseError(
            QStringLiteral("The question library was not found:\n%1").arg(shown(path)));
    }
    if (!file.isFile()) {
        throw DatabaseError(
            QStringLiteral("The question library should be a file, but this is a folder:\n%1")
                .arg(shown(path)));
    }
    if (!QFile(path).open(QIODevice::ReadOnly)) {
        throw DatabaseError(
            QStringLiteral("You do not have the right to read the question library:\n%1")
                .arg(shown(path)));
    }

    auto closeOnFailure = qScopeGuard([this] { close(); });
    path_ = path;
    database_ = openFile(path, SQLITE_OPEN_READWRITE, false);
    int result = database_ ? sqlite3_busy_timeout(database_, busyTimeoutMs) : SQLITE_NOMEM;
    if (result == SQLITE_OK) {
        result = touch(database_);
    }
    if (lacksRights(result)) {
        result = reopenForReading();
    }
    if (result == SQLITE_OK) {
        checkSchema();
    }
    if (result == SQLITE_OK && !isReadOnly()) {
        result = sqlite3_exec(database_, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL",
                              nullptr, nullptr, nullptr);
        if (lacksRights(result)) {
            result = reopenForReading();
        }
    }
    if (result != SQLITE_OK) {
        const QString reason =
            QString::fromUtf8(database_ ? sqlite3_errmsg(database_) : "out of memory");
        throw DatabaseError(
            result == SQLITE_NOTADB
                ? QStringLiteral("This file is not a question library:\n%1").arg(shown(path))
                : QStringLiteral("The question library could not be opened:\n%1\n\n(%2)")
                      .arg(shown(path), reason));
    }
    closeOnFailure.dismiss();
}

/// A write-ahead library in a folder that takes no side files can still be read.
int Connection::reopenForReading()
{
    sqlite3_close_v2(database_);
    database_ = openFile(path_, SQLITE_OPEN_READONLY, true);
    return database_ ? touch(database_) : SQLITE_NOMEM;
}

void Connection::close()
{
    sqlite3_close_v2(std::exchange(database_, nullptr));
}

bool Connection::isReadOnly() const
{
    return database_ && sqlite3_db_readonly(database_, "main") == 1;
}

void Connection::execute(const QString& statement)
{
    requireOpen();
    // A library that was deleted or replaced under us must not swallow changes silently.
    int moved = 0;
    sqlite3_file_control(database_, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    if (moved) {
        throw DatabaseError(QStringLiteral("The question library has been moved or deleted:\n%1")
                                .arg(shown(path_)));
    }
    run(statement.toUtf8().constData());
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

void Connection::checkSchema()
{
    for (const TableRule& table : libraryTables) {
        Recordset fields =
            read(QStringLiteral("PRAGMA table_info(%1)").arg(QString::fromUtf8(table.name)));
        const int name = fields.field("name");
        std::vector<QString> found;
        while (fields.next()) {
            found.push_back(fields.text(name));
        }
        for (const char* field : table.fields) {
            const auto matches = [&](const QString& other) {
                return other.compare(QLatin1String(field), Qt::CaseInsensitive) == 0;
            };
            if (std::none_of(found.begin(), found.end(), matches)) {
                throw DatabaseError(
                    QStringLiteral("This file is a database, but not a question library (%1 "
                                   "missing):\n%2")
                        .arg(found.empty()
                                 ? QStringLiteral("table %1 is").arg(QLatin1String(table.name))
                                 : QStringLiteral("field %1 of table %2 is")
                                       .arg(QLatin1String(field), QLatin1String(table.name)),
                             shown(path_)));
            }
        }
    }
}

void Connection::requireOpen() const
{
    if (!database_) {
        throw DatabaseError(QStringLiteral("The question library is not open."));
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
    throw DatabaseError(QString::fromUtf8(sqlite3_errmsg(database_)));
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
}

} // namespace varnholt
