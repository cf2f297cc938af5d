#pragma once

#include "library/PastTests.h"

#include <QString>

#include <future>
#include <map>
#include <vector>

namespace varnholt {

class Library;
class Show;

/// Has the library remember a show while it goes on, so that a program that dies loses no more than
/// the last key: the test from its first question on, each question's use when it is on the screen
/// for the first time, and how many knew it. A show that cannot be remembered goes on all the same.
class ShowMemory
{
public:
    /// `test` has the questions of the show, in its order. With a draw that was kept its key:
    /// it becomes the test.
    ShowMemory(Library& library, NewTest test, std::int32_t keptTestId = 0);
    ShowMemory(const ShowMemory&) = delete;
    ShowMemory& operator=(const ShowMemory&) = delete;
    ~ShowMemory();

    /// Writes down what is new. `seen`: the picture of the question on show is on the screen.
    void follow(const Show& show, bool seen);

    /// Why the show is not remembered any more, or not at all, in a whole sentence; empty when it
    /// is.
    [[nodiscard]] const QString& failure() const { return failure_; }

private:
    struct Row
    {
        std::int32_t key = 0;
        std::int64_t useId = 0;
        Outcome outcome = Outcome::Unknown;
    };

    void write(const Show& show, bool seen);
    void begin();
    void takePictures();

    Library& library_;
    NewTest test_;
    std::int32_t keptTestId_;
    std::int32_t testId_ = 0;
    std::vector<Row> rows_;
    /// The SHA-256 of the questions' pictures, being read.
    std::future<std::map<std::int32_t, QByteArray>> pictures_;
    QString failure_;
};

} // namespace varnholt
