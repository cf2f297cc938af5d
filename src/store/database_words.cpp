#include "store/database_words.h"

#include <sqlite3.h>

namespace varnholt {

QString WhatHappened(sqlite3* database)
{
    switch (sqlite3_errcode(database)) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return QStringLiteral("Another program is using the question library. Please try "
                              "again in a moment.");
    case SQLITE_READONLY:
        return QStringLiteral("The question library can only be read.");
    case SQLITE_CANTOPEN:
        return QStringLiteral("The question library or a file beside it cannot be opened.");
    case SQLITE_NOMEM:
        return QStringLiteral("There is not enough memory.");
    case SQLITE_FULL:
        return QStringLiteral("The disk is full.");
    case SQLITE_IOERR:
        return QStringLiteral("The disk with the question library cannot be read or written.");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return QStringLiteral("The question library is damaged.");
    default:
        return QStringLiteral("The question library refused it (%1).")
            .arg(QString::fromUtf8(sqlite3_errmsg(database)));
    }
}

} // namespace varnholt
