#pragma once

#include "library/PastTests.h"
#include "selection/question_draw.h"

#include <QString>

#include <future>

namespace varnholt {

class Library;

/// The marked questions of a draw as they are now. Pictures are not looked at.
[[nodiscard]] std::vector<TestItem> ItemsOf(const ProgramState& state, const Draw& draw);

/// What a test is called at first, after the topics of its questions: "Number, Algebra – 12
/// questions".
[[nodiscard]] QString NameOfTest(const ProgramState& state, const Draw& draw);

/// The pool of a past test: its questions where they were in the pool that they were drawn in, and
/// questions that are not marked in between.
[[nodiscard]] Draw DrawOf(const std::vector<TestItem>& items);

/// Records a draw that nothing is made of yet, with its pictures as they are. Throws `Error`.
void KeepTest(Library& library, NewTest test);

/// A test being made, as it was before that began: recorded once what is made of it is complete, so
/// that nothing is left of one that was cancelled or failed. A test that cannot be recorded is made
/// all the same.
class TestRecord
{
public:
    /// Without items there is nothing to record. Reads the pictures on a thread of its own where an
    /// item's SHA-256 is not known. A draw that was kept, with its key, becomes the test.
    TestRecord(Library& library, NewTest test, std::int32_t keptTestId = 0);

    /// What was made of it is complete. Only the first time counts.
    void complete(TestKind kind);

    /// Why a library that takes changes could not remember it, in a whole sentence; empty when it
    /// does.
    [[nodiscard]] const QString& failure() const { return failure_; }

private:
    Library& library_;
    NewTest test_;
    std::int32_t keptTestId_;
    bool open_;
    /// The items with their pictures.
    std::future<std::vector<TestItem>> items_;
    QString failure_;
};

} // namespace varnholt
