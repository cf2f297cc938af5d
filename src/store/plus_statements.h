#pragma once

#include <cstdint>

/// The statements that the classic program did not have, with places for bound values (?1, ?2, ...)
/// instead of values in the text. `kind` is that of the journal: 1 assessment, 2 topic, 3 subtopic,
/// 4 question, 5 class, 6 test, 7 use (the last three only where the program's own tables are). A
/// row's image is the JSON array of its fields, Available first and then the name or the answer.
namespace varnholt::plus_statements {

// The tables of the program's own.

/// One row when there are any.
inline constexpr char FindTables[] =
    "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'PlusInfo'";
inline constexpr char SelectInfo[] = "SELECT Version, LibraryID FROM PlusInfo";
inline constexpr char UpdateVersion[] = "UPDATE PlusInfo SET Version = ?1";

// Rows of the classic tables.

/// ?1 key: the row's image.
[[nodiscard]] const char* SelectImage(int kind);
/// ?1 key: the row's name and 1 when it is available.
[[nodiscard]] const char* SelectName(int kind);
/// ?1 key, ?2 image: gives a row the fields of an image.
[[nodiscard]] const char* UpdateFromImage(int kind);
/// ?1 key: the way back from the trash.
[[nodiscard]] const char* UpdateAvailable(int kind);
/// ?1 key, ?2 name.
[[nodiscard]] const char* UpdateName(int kind);
/// The largest key, 0 without rows.
[[nodiscard]] const char* SelectLargestKey(int kind);
/// ?1 key: the larger ones, ascending.
[[nodiscard]] const char* SelectKeysAbove(int kind);
/// ?1 key: AssessmentNum, TopicID and SubtopicNum that the row stands under, 0 where its kind
/// knows none.
[[nodiscard]] const char* SelectPlace(int kind);
/// ?1 name: the available assessments of that name.
inline constexpr char SelectAssessmentsNamed[] =
    "SELECT AssessmentNum FROM Assessments WHERE AssessmentName = ?1 AND Available = 1";

// The journal.

/// The number of the next step, and 1 when the newest step is undone; no row for an empty journal.
inline constexpr char SelectNextStep[] =
    "SELECT ChangeID + 1, Step < 0 FROM PlusChanges ORDER BY ChangeID DESC LIMIT 1";
/// ?1 a step just recorded: the undone steps before it can never be done again.
inline constexpr char DropRedoSteps[] =
    "UPDATE PlusChanges SET Step = 0 WHERE Step < 0 AND ChangeID < ?1 AND ChangeID > coalesce(("
    "SELECT ChangeID FROM PlusChanges WHERE Step > 0 AND ChangeID < ?1 ORDER BY ChangeID DESC "
    "LIMIT "
    "1), 0) AND EXISTS (SELECT 1 FROM PlusChanges WHERE ChangeID >= ?1)";
/// ?1 time, ?2 step, ?3 key, ?4 image before: records a row as it is now, unless it is as before.
[[nodiscard]] const char* InsertChange(int kind);
/// ?1 time, ?2 step, ?3 largest key before: records every row added since.
[[nodiscard]] const char* InsertAdded(int kind);
/// ?1 time, ?2 step, ?3 key, ?4 and ?5 mark before and after: records that a question's picture
/// was replaced; the mark follows the fields in both images.
extern const char InsertPictureChange[];
/// The step that can be undone next.
inline constexpr char SelectUndoStep[] =
    "SELECT Step FROM PlusChanges WHERE Step > 0 ORDER BY ChangeID DESC LIMIT 1";
/// The step that can be done again next: the first undone one after everything that is done.
inline constexpr char SelectRedoStep[] =
    "SELECT -Step FROM PlusChanges WHERE Step < 0 AND ChangeID > coalesce((SELECT ChangeID FROM "
    "PlusChanges WHERE Step > 0 ORDER BY ChangeID DESC LIMIT 1), 0) ORDER BY ChangeID LIMIT 1";
/// ?1 step as it stands in the table: Kind, ItemKey, Before, After and an image in which the row
/// that the step added is not available; in order.
inline constexpr char SelectStep[] =
    "SELECT Kind, ItemKey, Before, After, json_set(After, '$[0]', 0) FROM PlusChanges "
    "WHERE ChangeID >= abs(?1) AND Step = ?1 ORDER BY ChangeID";
/// ?1 step as it stands in the table, ?2 kind: how many rows of it.
inline constexpr char CountInStep[] =
    "SELECT count(*) FROM PlusChanges WHERE ChangeID >= abs(?1) AND Step = ?1 AND Kind = ?2";
/// ?1 step as it stands in the table, ?2 time.
inline constexpr char TurnStep[] =
    "UPDATE PlusChanges SET Step = -Step, At = ?2 WHERE ChangeID >= abs(?1) AND Step = ?1";
/// ?1 step as it stands in the table, its rows changed already: Kind and key of what is available
/// under a topic or subtopic of the step that is not.
inline constexpr char SelectOrphans[] =
    "WITH Changed AS (SELECT Kind, ItemKey FROM PlusChanges WHERE ChangeID >= abs(?1) AND Step = "
    "?1)"
    " SELECT 3, SubtopicNum FROM SubTopics WHERE Available = 1 AND TopicID IN (SELECT TopicID FROM "
    "Topics JOIN Changed ON Kind = 2 AND ItemKey = TopicID WHERE Available IS NOT 1)"
    " UNION ALL SELECT 4, SOLIndex FROM Questions WHERE Available = 1 AND SubTopicNum IN (SELECT "
    "SubtopicNum FROM SubTopics JOIN Changed ON Kind = 3 AND ItemKey = SubtopicNum WHERE Available "
    "IS NOT 1)";
/// As before: Kind and key of what is not available above an available row of the step that it
/// has put there.
inline constexpr char SelectGoneParents[] =
    "WITH Changed AS (SELECT Kind, ItemKey FROM PlusChanges WHERE ChangeID >= abs(?1) AND Step = ?1"
    " AND (Before IS NULL OR json_array(Before -> '$[0]', Before -> '$[2]', Before -> '$[3]') IS "
    "NOT"
    " json_array(After -> '$[0]', After -> '$[2]', After -> '$[3]')))"
    " SELECT 2, t.TopicID FROM Changed JOIN SubTopics s ON Kind = 3 AND ItemKey = s.SubtopicNum"
    " JOIN Topics t ON t.TopicID = s.TopicID WHERE s.Available = 1 AND t.Available IS NOT 1"
    " UNION SELECT 3, s.SubtopicNum FROM Changed JOIN Questions q ON Kind = 4 AND ItemKey = "
    "q.SOLIndex JOIN SubTopics s ON s.SubtopicNum = q.SubTopicNum WHERE q.Available = 1 AND "
    "s.Available IS NOT 1";

/// As before: kind and key of the available classes that are called as one of the step is.
inline constexpr char SelectSameNames[] =
    "SELECT 5, o.ClassID FROM PlusChanges JOIN PlusClasses c ON c.ClassID = ItemKey JOIN "
    "PlusClasses o ON o.ClassName = c.ClassName COLLATE NOCASE AND o.ClassID <> c.ClassID WHERE "
    "ChangeID >= abs(?1) AND Step = ?1 AND Kind = 5 AND c.Available = 1 AND o.Available = 1";

// The trash.

/// The keys of the rows of a kind that are not available.
[[nodiscard]] const char* SelectGone(int kind);
/// Key and AssessmentNum of the available questions of assessments that are not.
inline constexpr char SelectGoneWithAssessment[] =
    "SELECT SOLIndex, AssessmentNum FROM Questions WHERE Available = 1 AND AssessmentNum IN "
    "(SELECT "
    "AssessmentNum FROM Assessments WHERE Available IS NOT 1)";
/// Kind, key and time of every change, oldest first.
inline constexpr char SelectChangeTimes[] =
    "SELECT Kind, ItemKey, At FROM PlusChanges ORDER BY ChangeID";
/// ?1 key: name, and the names of the assessment, topic and subtopic that the row stands under.
[[nodiscard]] const char* SelectTrashTexts(int kind);
/// Key and the texts of `SelectTrashTexts`, of the rows of a kind that are in the trash.
[[nodiscard]] const char* SelectAllTrashTexts(int kind);

// Classes, past tests and uses.

/// ClassID and ClassName of the available ones, by their names.
inline constexpr char SelectClasses[] =
    "SELECT ClassID, ClassName FROM PlusClasses WHERE Available = 1 ORDER BY ClassName COLLATE "
    "NOCASE, ClassID";
/// ?1 name: the available class of that name in any case.
inline constexpr char SelectClassNamed[] =
    "SELECT ClassID FROM PlusClasses WHERE ClassName = ?1 COLLATE NOCASE AND Available = 1";
/// ?1 name: gives its key.
inline constexpr char InsertClass[] =
    "INSERT INTO PlusClasses (ClassName) VALUES (?1) RETURNING ClassID";
inline constexpr char DeleteClass[] = "UPDATE PlusClasses SET Available = 0 WHERE ClassID = ?1";
/// ?1 name, ?2 assessment, ?3 class or 0, ?4 time, ?5 kind, ?6 seed, ?7 options: gives its key.
inline constexpr char InsertTest[] =
    "INSERT INTO PlusTests (TestName, AssessmentNum, ClassID, MadeAt, Kind, Seed, Options) VALUES "
    "(?1, ?2, ?3, ?4, ?5, ?6, ?7) RETURNING TestID";
/// ?1 test, ?2 position, ?3 question, ?4 answer, ?5 topic text, ?6 SHA-256 of the picture.
inline constexpr char InsertTestItem[] =
    "INSERT INTO PlusTestItems (TestID, Position, SOLIndex, Answer, TopicText, PictureSha) VALUES "
    "(?1, ?2, ?3, ?4, ?5, ?6)";
/// ?1 test, ?2 kind, ?3 time: a draw that was kept is this from now on.
inline constexpr char TurnKeptTest[] =
    "UPDATE PlusTests SET Kind = ?2, MadeAt = ?3 WHERE TestID = ?1";
/// ?1 test, ?2 position, ?3 question, ?4 answer, ?5 topic text, ?6 SHA-256.
inline constexpr char UpdateTestItem[] =
    "UPDATE PlusTestItems SET SOLIndex = ?3, Answer = ?4, TopicText = ?5, PictureSha = ?6 WHERE "
    "TestID = ?1 AND Position = ?2";
/// ?1 test, ?2 time: a use of each of its questions.
inline constexpr char InsertTestUses[] =
    "INSERT INTO PlusUses (SOLIndex, ClassID, TestID, UsedAt) SELECT SOLIndex, ClassID, TestID, ?2 "
    "FROM PlusTests JOIN PlusTestItems USING (TestID) WHERE TestID = ?1 ORDER BY Position";
/// ?1 test, ?2 question, ?3 time: gives its key, of a test that there is.
inline constexpr char InsertUse[] =
    "INSERT INTO PlusUses (SOLIndex, ClassID, TestID, UsedAt) SELECT ?2, ClassID, TestID, ?3 FROM "
    "PlusTests WHERE TestID = ?1 RETURNING UseID";
/// ?1 use, ?2 outcome.
inline constexpr char UpdateOutcome[] =
    "UPDATE PlusUses SET Outcome = nullif(?2, 0) WHERE UseID = ?1";
/// ?1 test: UseID, SOLIndex and Outcome of its uses in the order in which they were recorded.
inline constexpr char SelectTestUses[] =
    "SELECT UseID, SOLIndex, Outcome FROM PlusUses WHERE TestID = ?1 ORDER BY UseID";
/// ?1 question, ?2 class: the newest of its uses that count, NULL for none.
inline constexpr char SelectNewestUse[] =
    "SELECT max(UseID) FROM PlusUses WHERE ClassID = ?2 AND SOLIndex = ?1 AND TestID NOT IN "
    "(SELECT TestID FROM PlusTests WHERE Options ->> 'unused' = 1)";
/// ?1 test, ?2 1 for one whose questions do not count as used.
inline constexpr char UpdateTestUnused[] =
    "UPDATE PlusTests SET Options = json_set(Options, '$.unused', ?2) WHERE TestID = ?1";
inline constexpr char DeleteTest[] = "UPDATE PlusTests SET Available = 0 WHERE TestID = ?1";
/// ?1 the most wanted, -1 for all; the newest first: TestID, TestName, AssessmentNum, ClassID,
/// ClassName, MadeAt, Kind, Seed, Options and the number of questions. Earlier programs left tests
/// of the kind 0 that never came to their end.
inline constexpr char SelectTests[] =
    "SELECT t.TestID, TestName, AssessmentNum, t.ClassID, ClassName, MadeAt, Kind, Seed, Options, "
    "(SELECT count(*) FROM PlusTestItems i WHERE i.TestID = t.TestID) FROM PlusTests t LEFT JOIN "
    "PlusClasses c ON c.ClassID = t.ClassID WHERE t.Available = 1 AND Kind <> 0 ORDER BY MadeAt "
    "DESC, TestID DESC LIMIT ?1";
/// ?1 test: Position, SOLIndex, Answer, TopicText, PictureSha in their order.
inline constexpr char SelectTestItems[] =
    "SELECT Position, SOLIndex, Answer, TopicText, PictureSha FROM PlusTestItems WHERE TestID = ?1 "
    "ORDER BY Position";
/// ?1 assessment: SOLIndex, ClassID, UsedAt, Outcome of the uses of its questions that count, in
/// the order in which they were recorded.
inline constexpr char SelectUses[] =
    "SELECT SOLIndex, ClassID, UsedAt, Outcome FROM PlusUses WHERE SOLIndex IN (SELECT SOLIndex "
    "FROM Questions WHERE AssessmentNum = ?1) AND TestID NOT IN (SELECT TestID FROM PlusTests "
    "WHERE Options ->> 'unused' = 1) ORDER BY UseID";

// The check of a library.

inline constexpr char SelectQuestionKeys[] = "SELECT SOLIndex FROM Questions";
/// The keys of the available questions of available assessments.
inline constexpr char SelectQuestionsInUse[] =
    "SELECT SOLIndex FROM Questions WHERE Available = 1 AND AssessmentNum IN (SELECT AssessmentNum "
    "FROM Assessments WHERE Available = 1) ORDER BY SOLIndex";
/// Key of each available question whose subtopic or topic is not, or whose assessment does not
/// exist, and 1 when a row above it does not exist at all.
inline constexpr char SelectMisplaced[] =
    "SELECT q.SOLIndex, a.AssessmentNum IS NULL OR t.TopicID IS NULL OR s.SubtopicNum IS NULL FROM "
    "Questions q LEFT JOIN Assessments a ON a.AssessmentNum = q.AssessmentNum LEFT JOIN Topics t "
    "ON "
    "t.TopicID = q.TopicID LEFT JOIN SubTopics s ON s.SubtopicNum = q.SubTopicNum WHERE "
    "q.Available "
    "= 1 AND (a.AssessmentNum IS NULL OR a.Available = 1 AND (t.Available IS NOT 1 OR s.Available "
    "IS NOT 1)) ORDER BY q.SOLIndex";
/// The number of available rows of a kind with keys above ?1.
[[nodiscard]] const char* CountKeysAbove(int kind);
/// The keys of the available rows of a kind whose name or answer holds an apostrophe.
[[nodiscard]] const char* SelectWithApostrophe(int kind);

} // namespace varnholt::plus_statements
