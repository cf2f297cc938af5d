#include "store/statement.h"

#include "store/connection.h"
#include "store/database_words.h"

#include <sqlite3.h>

namespace varnholt {

Statement::Statement(Connection& connection, const char* sql)
    : database_(connection.database_)
{
    connection.requireOpen();
    check(sqlite3_prepare_v3(database_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement_, nullptr));
}

Statement::~Statement()
{
    sqlite3_finalize(statement_);
}

void Statement::check(int result) const
{
    if (result != SQLITE_OK) {
        throw DatabaseError(WhatHappened(database_));
    }
}

Statement& Statement::bind(int place, std::int64_t value)
{
    check(sqlite3_bind_int64(statement_, place, value));
    return *this;
}

Statement& Statement::bind(int place, const QString& text)
{
    return bind(place, text.isNull() ? QByteArray("") : text.toUtf8());
}

Statement& Statement::bind(int place, const QByteArray& text)
{
    check(text.isNull() ? sqlite3_bind_null(statement_, place)
                        : sqlite3_bind_text(statement_, place, text.constData(),
                                            static_cast<int>(text.size()), SQLITE_TRANSIENT));
    return *this;
}

Statement& Statement::bindBlob(int place, const QByteArray& bytes)
{
    check(bytes.isNull() ? sqlite3_bind_null(statement_, place)
                         : sqlite3_bind_blob(statement_, place, bytes.constData(),
                                             static_cast<int>(bytes.size()), SQLITE_TRANSIENT));
    return *this;
}

bool Statement::next()
{
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result != SQLITE_DONE) {
        // The message is that of this failure, not of the reset that follows.
        const QString reason = WhatHappened(database_);
        reset();
        throw DatabaseError(reason);
    }
    reset();
    return false;
}

void Statement::run()
{
    if (next()) {
        reset();
    }
}

void Statement::reset()
{
    sqlite3_reset(statement_);
}

std::int64_t Statement::integer(int field) const
{
    return sqlite3_column_int64(statement_, field);
}

QString Statement::text(int field) const
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, field));
    return bytes ? QString::fromUtf8(bytes, sqlite3_column_bytes(statement_, field))
                 : QStringLiteral("");
}

QByteArray Statement::bytes(int field) const
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, field));
    return bytes ? QByteArray(bytes, sqlite3_column_bytes(statement_, field)) : QByteArray();
}

bool Statement::isNull(int field) const
{
    return sqlite3_column_type(statement_, field) == SQLITE_NULL;
}

} // namespace varnholt
