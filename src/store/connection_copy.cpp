#include "store/connection.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QScopeGuard>

#include <sqlite3.h>

namespace varnholt {

namespace {

QString whyNotCopied(int result, sqlite3* database)
{
    switch (result & 0xff) {
    case SQLITE_FULL:
        return Connection::tr("The disk is full.");
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return Connection::tr("Another program is using the question library. Please "
                              "try again in a moment.");
    default:
        return Connection::tr("The question library could not be copied (%1).")
            .arg(QString::fromUtf8(database ? sqlite3_errmsg(database) : sqlite3_errstr(result)));
    }
}

} // namespace

void Connection::copyTo(const QString& path, const std::function<void()>& step) const
{
    requireOpen();
    constexpr int pagesPerStep = 1000;
    sqlite3* copy = nullptr;
    const auto closeCopy = qScopeGuard([&] { sqlite3_close_v2(copy); });
    int result = sqlite3_open_v2(path.toUtf8().constData(), &copy,
                                 SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (result == SQLITE_OK) {
        // A copy cut short is worth nothing: it needs no journal, and is put on the disk once.
        result = sqlite3_exec(copy, "PRAGMA journal_mode = MEMORY; PRAGMA synchronous = OFF",
                              nullptr, nullptr, nullptr);
    }
    if (result == SQLITE_OK) {
        sqlite3_backup* backup = sqlite3_backup_init(copy, "main", database_, "main");
        const auto finish = qScopeGuard([&] { sqlite3_backup_finish(backup); });
        result = backup ? SQLITE_OK : sqlite3_errcode(copy);
        while (result == SQLITE_OK) {
            result = sqlite3_backup_step(backup, pagesPerStep);
            if (step) {
                step();
            }
        }
    }
    if (result == SQLITE_DONE) {
        // The original's log is no business of the copy's: one file that any folder can hold.
        result = sqlite3_exec(copy, "PRAGMA journal_mode = DELETE", nullptr, nullptr, nullptr);
    }
    if (result != SQLITE_OK) {
        throw DatabaseError(whyNotCopied(result, copy));
    }
}

void Connection::replaceBy(const QString& path)
{
    requireInPlace();
    sqlite3* wanted = nullptr;
    const auto closeWanted = qScopeGuard([&] { sqlite3_close_v2(wanted); });
    int result =
        sqlite3_open_v2(path.toUtf8().constData(), &wanted, SQLITE_OPEN_READWRITE, nullptr);
    if (result == SQLITE_OK) {
        sqlite3_backup* backup = sqlite3_backup_init(database_, "main", wanted, "main");
        result = backup ? sqlite3_backup_step(backup, -1) : sqlite3_errcode(database_);
        // Ending takes back what was begun, and it alone knows of a commit that failed.
        const int end = backup ? sqlite3_backup_finish(backup) : SQLITE_OK;
        result = end == SQLITE_OK && result != SQLITE_DONE ? result : end;
    }
    if (result != SQLITE_OK) {
        throw DatabaseError(whyNotCopied(result, database_));
    }
    settleWhenIdle();
}

} // namespace varnholt
