#pragma once

#include "library/UseBook.h"
#include "store/slide_wishes.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <map>
#include <vector>

namespace varnholt {

class Connection;

/// What was made of a test. The numbers stand in the library.
enum class TestKind : std::int8_t
{
    Slides = 1,
    Shown = 2,
    Paper = 3,
    /// Drawn, and nothing made of it yet.
    Kept = 4
};

/// What else is known of a test.
struct TestOptions
{
    bool topicLine = true;
    bool answerKey = true;
    /// 0 for the test as it was drawn (A), 1 to 5 for its versions B to F.
    int version = 0;
    /// The test that this is a version of; 0 for none.
    std::int32_t versionOf = 0;
    /// The teacher has said that it was not used after all.
    bool unused = false;
    /// How many questions were asked for, of a draw that was kept; 0 else.
    int asked = 0;
    SlideWishes slides{};

    [[nodiscard]] QString toJson() const;
    [[nodiscard]] static TestOptions fromJson(const QString& text);

    friend bool operator==(const TestOptions&, const TestOptions&) = default;
};

/// A question of a test as it was when the test was made.
struct TestItem
{
    /// Its position in the draw pool, from 1, which decides where the answer key breaks.
    std::int32_t position = 0;
    std::int32_t SOLIndex = 0;
    QString answer;
    QString topicText;
    /// SHA-256 of the picture file; null when it could not be read.
    QByteArray pictureSha;

    friend bool operator==(const TestItem&, const TestItem&) = default;
};

/// A test that is to be recorded.
struct NewTest
{
    QString name;
    std::int32_t AssessmentNum = 0;
    /// A class that does not exist yet is added; empty for no class in particular.
    QString className;
    /// What the versions are shuffled by.
    std::uint64_t seed = 0;
    TestOptions options;
    /// In the order of their positions.
    std::vector<TestItem> items;
};

/// A test in the list of past tests.
struct PastTest
{
    std::int32_t TestID = 0;
    QString name;
    std::int32_t AssessmentNum = 0;
    std::int32_t ClassID = 0;
    QString className;
    /// Seconds of UTC.
    std::int64_t madeAt = 0;
    TestKind kind = TestKind::Slides;
    std::uint64_t seed = 0;
    TestOptions options;
    int questions = 0;
};

/// A question of a test that was used with a class.
struct TestUse
{
    /// Of the newest use of the question in the test.
    std::int64_t UseID = 0;
    std::int32_t SOLIndex = 0;
    Outcome outcome = Outcome::Unknown;

    friend bool operator==(const TestUse&, const TestUse&) = default;
};

struct ClassRecord
{
    std::int32_t ClassID = 0;
    QString ClassName;
};

/// The tests that a library remembers, and its classes, for reading. Everything throws
/// `DatabaseError`.
class PastTests
{
public:
    /// `recorded`: the library has the tables that tests are recorded in; without them everything
    /// is empty.
    PastTests(Connection& connection, bool recorded)
        : connection_(connection)
        , recorded_(recorded)
    {}

    /// The newest first, `most` at most. Those in the trash are not among them.
    [[nodiscard]] std::vector<PastTest> list(int most = -1) const;
    [[nodiscard]] std::vector<TestItem> items(std::int32_t testId) const;
    /// Its questions that were used, by their keys. None of a draw that was kept.
    [[nodiscard]] std::map<std::int32_t, TestUse> uses(std::int32_t testId) const;
    /// The newest use of a question with a class that counts; 0 for none.
    [[nodiscard]] std::int64_t newestUse(std::int32_t solIndex, std::int32_t classId) const;
    /// By their names.
    [[nodiscard]] std::vector<ClassRecord> classes() const;
    /// The key of the class of that name, in any case; 0 for none.
    [[nodiscard]] std::int32_t classNamed(const QString& name) const;

private:
    Connection& connection_;
    bool recorded_;
};

/// A test's letter: "A" for 0 to "F" for 5.
[[nodiscard]] QString VersionLetter(int version);

} // namespace varnholt
