#include "files/file_system.h"
#include "store/connection.h"
#include "store/database_words.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QUrl>

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>
#include <vector>

namespace varnholt {

namespace {

/// Nothing is on the screen yet: who waits longer should see why.
constexpr int openingTimeoutMs = 250;

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
    QByteArray name = path.toUtf8();
    if (immutable) {
        // Three slashes before a path with a drive, four before one on another computer, whose
        // name would be taken for a part of the address otherwise.
        name = (path.startsWith(u'/') ? "file://" : "file:///") +
               QUrl::toPercentEncoding(path, "/:") + "?immutable=1";
        flags |= SQLITE_OPEN_URI;
    }
    // A connection belongs to one thread.
    flags |= SQLITE_OPEN_NOMUTEX;
    sqlite3* database = nullptr;
    sqlite3_open_v2(name.constData(), &database, flags, nullptr);
    return database;
}

int send(sqlite3* database, const char* sql)
{
    return sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
}

/// SQLite opens lazily; only a read tells whether the file is a database.
int touch(sqlite3* database)
{
    return send(database, "SELECT count(*) FROM sqlite_master");
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

/// Changes that were not brought into the file stand in one of these: those of a program that was
/// ended, or of a transaction that has to be taken back.
const std::array<const char*, 2> sideFiles{"-wal", "-journal"};

bool hasUnmergedChanges(const QString& path)
{
    return std::any_of(sideFiles.begin(), sideFiles.end(), [&](const char* ending) {
        return QFileInfo(path + QLatin1String(ending)).size() > 0;
    });
}

/// What tells whether a file has changed while it was copied.
std::vector<std::pair<qint64, QDateTime>> state(const QString& path)
{
    std::vector<std::pair<qint64, QDateTime>> result;
    for (const char* ending : {"", sideFiles[0], sideFiles[1]}) {
        const QFileInfo file(path + QLatin1String(ending));
        result.emplace_back(file.size(), file.lastModified());
    }
    return result;
}

bool copyWithSideFiles(const QString& from, const QString& to)
{
    const auto before = state(from);
    for (const char* ending : {"", sideFiles[0], sideFiles[1]}) {
        const QString copy = to + QLatin1String(ending);
        const QString original = from + QLatin1String(ending);
        QFile::remove(copy);
        if (QFileInfo::exists(original) &&
            !(QFile::copy(original, copy) &&
              QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner))) {
            return false;
        }
    }
    return state(from) == before;
}

} // namespace

void Connection::open(const QString& path, Access access)
{
    close();
    const QFileInfo file(path);
    if (!file.exists()) {
        throw DatabaseError(tr("The question library was not found:\n%1").arg(shown(path)));
    }
    if (!file.isFile()) {
        throw DatabaseError(tr("The question library should be a file, but this is a folder:\n%1")
                                .arg(shown(path)));
    }

    auto closeOnFailure = qScopeGuard([this] { close(); });
    path_ = path;
    const int result = openDatabase(access);
    if (result != SQLITE_OK) {
        if (result == SQLITE_BUSY) {
            throw LibraryBusy(
                tr("Another program is using the question library just now:\n%1").arg(shown(path)));
        }
        // Not beforehand: closing the file would end every lock that this process has on it.
        if (result != SQLITE_NOTADB && !QFile(path).open(QIODevice::ReadOnly)) {
            throw DatabaseError(
                tr("You do not have the right to read the question library:\n%1").arg(shown(path)));
        }
        throw DatabaseError(result == SQLITE_NOTADB
                                ? tr("This file is not a question library:\n%1").arg(shown(path))
                                : tr("The question library could not be opened:\n%1\n\n%2")
                                      .arg(shown(path), WhatHappened(database_)));
    }
    sqlite3_busy_timeout(database_, busyTimeoutMs);
    closeOnFailure.dismiss();
}

int Connection::openDatabase(Access access)
{
    const bool change = access == Access::Change;
    const bool network = change && IsOnNetwork(QFileInfo(path_).filesystemFilePath());
    database_ = openFile(path_, change ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY, false);
    int result = database_ ? sqlite3_busy_timeout(database_, openingTimeoutMs) : SQLITE_NOMEM;
    if (result == SQLITE_OK && network && !isReadOnly()) {
        // A log of earlier use on a local disk is taken up without shared memory. A file that can
        // only be read cannot be locked like this.
        result = send(database_, "PRAGMA locking_mode = EXCLUSIVE");
    }
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
        // Where no log is begun only a change, here of any kind, tells whether the folder takes
        // side files.
        result =
            send(database_, network ? "PRAGMA journal_mode = DELETE; PRAGMA locking_mode = NORMAL;"
                                      "PRAGMA synchronous = FULL; BEGIN IMMEDIATE;"
                                      "PRAGMA user_version = 0; ROLLBACK"
                                    : "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL");
        if (lacksRights(result)) {
            result = reopenForReading();
        }
    }
    return result;
}

/// A library in a folder that takes no side files can still be read.
int Connection::reopenForReading()
{
    sqlite3_close_v2(std::exchange(database_, nullptr));
    const QString path = hasUnmergedChanges(path_) ? mergeIntoCopy() : path_;
    database_ = openFile(path, SQLITE_OPEN_READONLY, true);
    return database_ ? touch(database_) : SQLITE_NOMEM;
}

/// Path of a private copy that holds the changes from beside the file, too.
QString Connection::mergeIntoCopy()
{
    constexpr int attempts = 3;
    mergedCopy_ = std::make_unique<QTemporaryDir>();
    const QString copy = mergedCopy_->filePath(QStringLiteral("Varnholt.mdb"));
    for (int i = 0; i < attempts && mergedCopy_->isValid(); ++i) {
        if (!copyWithSideFiles(path_, copy)) {
            continue;
        }
        sqlite3* merging = openFile(copy, SQLITE_OPEN_READWRITE, false);
        const int result = send(merging, "PRAGMA journal_mode = DELETE");
        sqlite3_close_v2(merging);
        if (result == SQLITE_OK && !hasUnmergedChanges(copy)) {
            return copy;
        }
    }
    throw DatabaseError(
        tr("The question library was not closed properly, and its last changes, which "
           "stand in files beside it, could not be read:\n%1\n\nOpen it once with an "
           "account that may change its folder.")
            .arg(shown(path_)));
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
                const QLatin1String tableName(table.name);
                throw DatabaseError(
                    found.empty() ? tr("This file is a database, but not a question library (table "
                                       "%1 is missing):\n%2")
                                        .arg(tableName, shown(path_))
                                  : tr("This file is a database, but not a question library (field "
                                       "%1 of table %2 is missing):\n%3")
                                        .arg(QLatin1String(field), tableName, shown(path_)));
            }
        }
    }
}

} // namespace varnholt
