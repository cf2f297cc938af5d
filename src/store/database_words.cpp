#include "store/database_words.h"

#include "store/connection.h"

#include <QLoggingCategory>

#include <sqlite3.h>

namespace varnholt {

namespace {
Q_LOGGING_CATEGORY(logStore, "varnholt.store")
} // namespace

QString WhatHappened(sqlite3* database)
{
    qCWarning(logStore, "SQLite failed with %d (%d).", sqlite3_errcode(database),
              sqlite3_extended_errcode(database));
    switch (sqlite3_errcode(database)) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return Connection::tr("Another program is using the question library. Please try "
                              "again in a moment.");
    case SQLITE_READONLY:
        return Connection::tr("The question library can only be read.");
    case SQLITE_CANTOPEN:
        return Connection::tr("The question library or a file beside it cannot be opened.");
    case SQLITE_NOMEM:
        return Connection::tr("There is not enough memory.");
    case SQLITE_FULL:
        return Connection::tr("The disk is full.");
    case SQLITE_IOERR:
        return Connection::tr("The disk with the question library cannot be read or written.");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return Connection::tr("The question library is damaged.");
    default:
        return Connection::tr("The question library refused it (%1).")
            .arg(QString::fromUtf8(sqlite3_errmsg(database)));
    }
}

} // namespace varnholt
