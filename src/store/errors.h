#pragma once

#include <QCoreApplication>
#include <QString>

#include <cstdint>
#include <exception>
#include <limits>
#include <utility>

namespace varnholt {

/// Something in the outside world went wrong (a file, the database, another program).
/// `message()` is a full sentence a user can read. Bugs of ours are `std::logic_error`s.
class Error : public std::exception
{
public:
    explicit Error(QString message)
        : message_(std::move(message))
        , bytes_(message_.toUtf8())
    {}

    [[nodiscard]] const QString& message() const { return message_; }
    [[nodiscard]] const char* what() const noexcept override { return bytes_.constData(); }

private:
    QString message_;
    QByteArray bytes_;
};

/// A statement failed, or the library file could not be opened or read.
class DatabaseError : public Error
{
public:
    using Error::Error;
};

/// Another program locks the library file; a later try may work.
class LibraryBusy : public DatabaseError
{
public:
    using DatabaseError::DatabaseError;
};

/// A number does not fit the 16-bit value a handler keeps it in.
class OverflowError : public Error
{
public:
    using Error::Error;
};

/// The user asked to stop; nothing went wrong and nothing needs to be reported.
class Cancelled : public std::exception
{
public:
    [[nodiscard]] const char* what() const noexcept override { return "Cancelled."; }
};

/// The one conversion to the 16-bit values that some handlers keep keys in.
/// Throws `OverflowError` when `value` does not fit.
[[nodiscard]] inline std::int16_t toInt16(std::int64_t value)
{
    if (value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max()) {
        throw OverflowError(
            QCoreApplication::translate("Errors", "The number %1 does not fit into 16 bits.")
                .arg(value));
    }
    return static_cast<std::int16_t>(value);
}

} // namespace varnholt
