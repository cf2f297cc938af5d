#pragma once

#include "store/errors.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

struct sqlite3;
struct sqlite3_stmt;

namespace varnholt {

class Connection;

/// A statement that is made ready once and run as often as wanted, with values bound to its places
/// (which count from 1). Values are never part of the text, so that any text can be stored. Lives
/// no longer than its `Connection` stays open. Everything throws `DatabaseError` on failure.
class Statement
{
public:
    Statement(Connection& connection, const char* sql);
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    Statement& bind(int place, std::int64_t value);
    Statement& bind(int place, const QString& text);
    /// UTF-8; a null array binds NULL.
    Statement& bind(int place, const QByteArray& text);
    /// Bytes that are no text; a null array binds NULL.
    Statement& bindBlob(int place, const QByteArray& bytes);

    /// Steps to the next row; false after the last, when the statement is ready to run again with
    /// the values bound before.
    bool next();
    /// Runs a statement that gives no rows, or takes the first of them only.
    void run();
    /// Gives up the rows that are left.
    void reset();

    // Fields of the current row, which count from 0.
    [[nodiscard]] std::int64_t integer(int field) const;
    /// NULL reads as the empty text.
    [[nodiscard]] QString text(int field) const;
    /// As stored; null for NULL.
    [[nodiscard]] QByteArray bytes(int field) const;
    [[nodiscard]] bool isNull(int field) const;

private:
    void check(int result) const;

    sqlite3* database_;
    sqlite3_stmt* statement_ = nullptr;
};

} // namespace varnholt
