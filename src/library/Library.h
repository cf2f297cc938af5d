#pragma once

#include "library/ImportPlan.h"
#include "library/Journal.h"
#include "library/PastTests.h"
#include "library/PlusTables.h"
#include "library/Trash.h"
#include "library/UseBook.h"
#include "library/items.h"
#include "library/restore.h"
#include "store/connection.h"
#include "store/errors.h"

#include <QObject>

#include <functional>
#include <map>

namespace varnholt {

class Clock;

/// An import that did not come to its end.
class ImportFailure : public Error
{
public:
    ImportFailure(const QString& reason, bool keeps)
        : Error(reason)
        , rowsStay(keeps)
    {}
    /// The rows added until then stay, under an assessment that is deleted again. Otherwise nothing
    /// has been added.
    bool rowsStay;
};

/// A question's picture failed; its row is in the library without one.
class PictureMissing : public Error
{
public:
    PictureMissing(const QString& reason, std::int32_t solIndex)
        : Error(reason)
        , SOLIndex(solIndex)
    {}
    std::int32_t SOLIndex;
};

/// How bringing something back from the trash ended.
enum class RestoreOutcome
{
    Done,
    /// Another assessment has taken the name: `restore` needs a new one.
    NameTaken,
    /// See `RestorePlan`; nothing has been changed.
    PlaceMissing,
    NothingToDo
};

/// What bringing several rows back came to.
struct RestoreResult
{
    RestoreOutcome outcome = RestoreOutcome::NothingToDo;
    /// With `NameTaken` the assessment that needs another name, with `PlaceMissing` the row that
    /// has no place.
    std::optional<NamedItem> obstacle;
    /// With `Done` every row that has come back.
    std::vector<NamedItem> back;
};

/// The one owner of a library: its connection, its picture folder and its journal. It has a verb
/// for each change that a user can make. A verb is one transaction: the statements of the change
/// and a step in the journal. It is done whole or leaves everything as it was, and `changed` tells
/// the windows once it is done. Verbs ask nobody anything; they throw `Error` with a sentence that
/// a user can read. Where the library can take no journal (see `features`) the verbs of the classic
/// program work without one.
///
/// Names and answers in the classic verbs hold no apostrophe, as `statements` says.
class Library : public QObject
{
    Q_OBJECT

public:
    /// `programFolder` holds the library file and the folder of its pictures. The clock outlives
    /// the library.
    Library(QString programFolder, const Clock& clock,
            std::vector<QString> scripts = PlusTables::ownScripts());
    ~Library() override;

    /// Opens the library of the program folder. Throws as `Connection::open`.
    void open(Connection::Access access = Connection::Access::Change);
    void close();
    /// Looks anew at a library whose file has been replaced under the open connection.
    void refresh();

    /// For reading. What is written past the verbs is in no journal and is told to nobody.
    [[nodiscard]] Connection& connection() { return connection_; }
    [[nodiscard]] const QString& programFolder() const { return programFolder_; }
    [[nodiscard]] FeatureState features() const { return tables_.state(); }
    [[nodiscard]] PlusTables& tables() { return tables_; }

    // Adding. The key of the new row is returned. Deleting marks the row as not available and
    // touches nothing below it; whether it may be deleted is the caller's question.

    std::int32_t addAssessment(const QString& name);
    void deleteAssessment(std::int32_t assessmentNum);
    std::int32_t addTopic(std::int32_t assessmentNum, const QString& name);
    void deleteTopic(std::int32_t topicId);
    std::int32_t addSubtopic(std::int32_t assessmentNum, std::int32_t topicId, const QString& name);
    /// Several in one step; all of them or none. Their keys are returned.
    std::vector<std::int32_t> addTopics(std::int32_t assessmentNum, const QStringList& names);
    std::vector<std::int32_t> addSubtopics(std::int32_t assessmentNum, std::int32_t topicId,
                                           const QStringList& names);
    void deleteSubtopic(std::int32_t subtopicNum);
    void deleteQuestion(std::int32_t solIndex);
    /// Files a question elsewhere in its assessment and gives it an answer.
    void editQuestion(std::int32_t solIndex, std::int32_t topicId, std::int32_t subtopicNum,
                      const QString& answer);

    /// Writes a question's picture to a path where there is no file yet; a file appears there only
    /// when it is whole. Throws `Error`.
    using PictureWriter = std::function<void(const QString& path)>;
    /// The row and the picture become visible together: a program killed in between leaves neither,
    /// and at most a picture without a row. When the picture fails the row stays without one, and
    /// `PictureMissing` is thrown. A file that has the new key's name already belongs to no
    /// question of this library (keys are never used twice; a library put back from a backup comes
    /// to this): it is renamed to "<name>.bak". Where that fails the row goes, too.
    std::int32_t addQuestion(const Filing& filing, const QString& answer,
                             const PictureWriter& writePicture);
    /// The same whole or not at all: when the picture fails the row goes, too, and no key is spent.
    /// Throws what `writePicture` throws.
    std::int32_t addWholeQuestion(const Filing& filing, const QString& answer,
                                  const PictureWriter& writePicture);
    /// Another try for a question whose picture failed: with what is said now.
    void completeQuestion(std::int32_t solIndex, const Filing& filing, const QString& answer,
                          const PictureWriter& writePicture);

    /// Adds what the plan says. Throws `ImportFailure`, and `Cancelled` when a step was cancelled:
    /// nothing has been added then.
    ImportResult apply(const ImportPlan& plan, const ImportSteps& steps);

    /// The assessment to begin with at the next start, 0 for none. Not a step of the journal.
    void rememberAssessment(std::int32_t assessmentNum);

    // What the classic program did not have. These throw `Error` with the reason where `features`
    // are off, unless said otherwise.

    /// Gives an assessment, topic or subtopic another name, by the rules of new names.
    void rename(Item item, const QString& name);
    /// A name as it would be stored; empty when it is none.
    [[nodiscard]] static QString storedName(ItemKind kind, const QString& name);

    /// Gives a question another picture. The old one is kept: see `PutOldPicture`.
    void replacePicture(std::int32_t solIndex, const PictureWriter& writePicture);

    /// Deletes rows of any kind in one step.
    void deleteRows(const std::vector<Item>& items);
    /// Gives rows other names, and questions other answers, in one step: texts in the place of
    /// others that cannot be saved, by no rule of new names.
    void replaceTexts(const std::vector<NamedItem>& texts);

    /// Where a row stands: see `AvailablePlace`.
    [[nodiscard]] Filing placeOf(Item item) { return AvailablePlace(connection_, item); }

    /// What `restore` would do.
    [[nodiscard]] RestorePlan planRestore(Item item) { return PlanRestore(connection_, item); }
    /// Brings a row back, and what it stands under with it. `newName` is for the assessment whose
    /// name is taken.
    RestoreOutcome restore(Item item, const QString& newName = {});
    /// Brings several rows back in one step, or none of them. `newNames` are for assessments whose
    /// names are taken, by their keys. `progress` is told the rows done and may throw to stop it.
    RestoreResult restore(const std::vector<Item>& items,
                          const std::map<std::int32_t, QString>& newNames,
                          const std::function<void(std::size_t done)>& progress = {});
    /// Also of a library that can only be read.
    [[nodiscard]] Trash trash() { return Trash(connection_, tables_.exist()); }

    // Classes, past tests and uses. Recording a test or a use is no step of the journal; what a
    // teacher says of them or does to them afterwards is one.

    /// Also of a library that can only be read.
    [[nodiscard]] PastTests pastTests() { return PastTests(connection_, tables_.exist()); }
    [[nodiscard]] UseBook useBook(std::int32_t assessmentNum);

    /// The key of the class of that name, in any case; added when there is none.
    std::int32_t addClass(const QString& name);
    void deleteClass(std::int32_t classId);

    /// Records a test that slides or paper were made of, whole: it is listed, and its questions
    /// count as used, from now on. The key is returned.
    std::int32_t recordTest(const NewTest& test, TestKind kind);
    /// The same of a draw that was kept: it becomes that test, with these items at their positions.
    void recordTest(std::int32_t keptTestId, TestKind kind, const std::vector<TestItem>& items);
    /// Records a draw that nothing is made of yet.
    std::int32_t keepTest(const NewTest& test);
    /// Records a test whose questions are shown in class one by one. It is listed at once; each of
    /// its questions counts as used from its `recordUse` on.
    std::int32_t beginShow(const NewTest& test);
    /// The same of a draw that was kept: it becomes that test, with these items at their positions.
    void beginShow(std::int32_t keptTestId, const std::vector<TestItem>& items);
    /// What stands at positions of a test: other questions in the place of those that were there,
    /// or pictures whose SHA-256 is known by now.
    void setTestItems(std::int32_t testId, const std::vector<TestItem>& items);
    /// A question of such a test is on the screen for the first time: it is a use with the test's
    /// class from now on, whatever becomes of the rest. One short transaction. The key of the use
    /// is returned, for `recordOutcome`. Throws for a test that is not there.
    std::int64_t recordUse(std::int32_t testId, std::int32_t solIndex);
    /// How many knew the questions of these uses (`recordUse`, `PastTests::uses`), in the place of
    /// what was said before; `Outcome::Unknown` takes it back. One short transaction, one step of
    /// the journal.
    void recordOutcome(const std::vector<std::int64_t>& useIds, Outcome outcome);
    /// Whether the questions of a test count as used.
    void setTestUsed(std::int32_t testId, bool used);
    void deleteTest(std::int32_t testId);

    /// The steps that `undo` and `redo` are about to take; none where they can take none.
    [[nodiscard]] std::optional<StepInfo> undoStep();
    [[nodiscard]] std::optional<StepInfo> redoStep();
    UndoOutcome undo();
    UndoOutcome redo();

Q_SIGNALS:
    /// After each change, when everything is done. Handlers must not throw.
    void changed(const varnholt::LibraryChange& change);

private:
    class Change;

    [[nodiscard]] std::int64_t now() const;
    /// The field of the first row of a read: the newest.
    [[nodiscard]] std::int32_t newestKey(const QString& statement, const char* field);
    void requireFeatures() const;
    /// A new question's row; its key.
    std::int32_t addRow(Change& change, const Filing& filing, const QString& answer);
    /// The rest of a change that has given a question its row: the picture and the commit.
    void placePicture(Change& change, std::int32_t key, const PictureWriter& writePicture);
    /// The new name among `newNames` for an assessment whose name is taken; empty when there is
    /// none that it could have.
    [[nodiscard]] QString freeName(const NamedItem& taken,
                                   const std::map<std::int32_t, QString>& newNames);
    void bringBack(Change& change, const NamedItem& row, const QString& newName);
    void deleteRow(Item item, const QString& statement);
    /// Runs a statement on a row of the program's own tables, as a step of the journal.
    void changeRow(Item item, Statement& statement);
    std::int32_t classKey(Change& change, const QString& name);
    /// Classes are told apart by their names. Throws `Error` when another one has this one.
    void requireFreeClass(const QString& name, std::int32_t except);
    std::int32_t insertTest(Change& change, const NewTest& test, TestKind kind);
    void turnKept(Change& change, std::int32_t keptTestId, TestKind kind,
                  const std::vector<TestItem>& items);
    void insertUses(std::int32_t testId);
    void addImportedRows(const ImportPlan& plan, const ImportSteps& steps,
                         std::int32_t assessmentNum);
    UndoOutcome turn(UndoOutcome (Journal::*direction)(std::int64_t));
    /// Puts old pictures in their places and commits; all of it or nothing.
    void putPictures(const std::vector<TurnedPicture>& pictures, Transaction& transaction);

    QString programFolder_;
    const Clock& clock_;
    Connection connection_;
    PlusTables tables_;
    Journal journal_;
};

} // namespace varnholt
