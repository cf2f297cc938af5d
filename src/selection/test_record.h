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

/// A test being made: recorded before, and complete when what is made of it is. A test that cannot
/// be recorded is made all the same.
class TestRecord
{
public:
    /// Records it. Without items there is nothing to record. Reads the pictures on a thread of its
    /// own where an item's SHA-256 is not known.
    TestRecord(Library& library, const NewTest& test);
    /// For a test that is recorded already, such as one that was kept for later.
    TestRecord(Library& library, std::int32_t testId);

    /// What was made of it is complete.
    void complete(TestKind kind);

    /// 0 for none.
    [[nodiscard]] std::int32_t testId() const { return testId_; }
    /// Why a library that takes changes could not remember it, in a whole sentence; empty when it
    /// does.
    [[nodiscard]] const QString& failure() const { return failure_; }

private:
    Library& library_;
    std::int32_t testId_ = 0;
    std::future<std::vector<QByteArray>> pictures_;
    QString failure_;
};

} // namespace varnholt
