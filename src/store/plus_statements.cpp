#include "store/plus_statements.h"

#include <initializer_list>
#include <stdexcept>

namespace varnholt::plus_statements {

namespace {

// The fields of a row in the order of its image.
#define ASSESSMENT_FIELDS "json_array(Available, CAST(AssessmentName AS TEXT))"
#define TOPIC_FIELDS "json_array(Available, CAST(Topic AS TEXT), AssessmentNum)"
#define SUBTOPIC_FIELDS "json_array(Available, CAST(SubTopic AS TEXT), TopicID, AssessmentNum)"
#define QUESTION_FIELDS                                                                            \
    "json_array(Available, CAST(Answer AS TEXT), TopicID, SubTopicNum, AssessmentNum)"

#define CLASS_FIELDS "json_array(Available, ClassName)"
#define TEST_FIELDS "json_array(Available, TestName, Options)"
// A use has no name and does not go.
#define USE_FIELDS "json_array(1, '', Outcome)"

#define FROM_ASSESSMENTS " FROM Assessments WHERE AssessmentNum "
#define FROM_TOPICS " FROM Topics WHERE TopicID "
#define FROM_SUBTOPICS " FROM SubTopics WHERE SubtopicNum "
#define FROM_QUESTIONS " FROM Questions WHERE SOLIndex "

#define FROM_CLASSES " FROM PlusClasses WHERE ClassID "
#define FROM_TESTS " FROM PlusTests WHERE TestID "
#define FROM_USES " FROM PlusUses WHERE UseID "

#define INSERT_CHANGE(kind, key, fields)                                                           \
    "INSERT INTO PlusChanges (At, Step, Kind, ItemKey, Before, After) SELECT ?1, ?2, " kind        \
    ", " key ", ?4, " fields
#define INSERT_ADDED(kind, key, fields)                                                            \
    "INSERT INTO PlusChanges (At, Step, Kind, ItemKey, Before, After) SELECT ?1, ?2, " kind        \
    ", " key ", NULL, " fields

#define ASSESSMENT_TEXTS "i.AssessmentName, NULL, NULL, NULL FROM Assessments i"
#define TOPIC_TEXTS                                                                                \
    "i.Topic, a.AssessmentName, NULL, NULL FROM Topics i LEFT JOIN Assessments a USING "           \
    "(AssessmentNum)"
#define SUBTOPIC_TEXTS                                                                             \
    "i.SubTopic, a.AssessmentName, t.Topic, NULL FROM SubTopics i LEFT JOIN Assessments a ON "     \
    "a.AssessmentNum = i.AssessmentNum LEFT JOIN Topics t ON t.TopicID = i.TopicID"
#define QUESTION_TEXTS                                                                             \
    "i.Answer, a.AssessmentName, t.Topic, s.SubTopic FROM Questions i LEFT JOIN Assessments a ON " \
    "a.AssessmentNum = i.AssessmentNum LEFT JOIN Topics t ON t.TopicID = i.TopicID LEFT JOIN "     \
    "SubTopics s ON s.SubtopicNum = i.SubTopicNum"

/// The statement of a kind out of those for the kinds from 1 on.
const char* ofKind(int kind, std::initializer_list<const char*> statements)
{
    if (kind < 1 || kind > static_cast<int>(statements.size())) {
        throw std::logic_error("no such kind of row");
    }
    return statements.begin()[kind - 1];
}

#define CLASS_TEXTS "i.ClassName, NULL, NULL, NULL FROM PlusClasses i"
#define TEST_TEXTS                                                                                 \
    "i.TestName, a.AssessmentName, NULL, NULL FROM PlusTests i LEFT JOIN Assessments a USING "     \
    "(AssessmentNum)"

} // namespace

const char* SelectImage(int kind)
{
    return ofKind(kind,
                  {"SELECT " ASSESSMENT_FIELDS FROM_ASSESSMENTS "= ?1",
                   "SELECT " TOPIC_FIELDS FROM_TOPICS "= ?1",
                   "SELECT " SUBTOPIC_FIELDS FROM_SUBTOPICS "= ?1",
                   "SELECT " QUESTION_FIELDS FROM_QUESTIONS "= ?1",
                   "SELECT " CLASS_FIELDS FROM_CLASSES "= ?1",
                   "SELECT " TEST_FIELDS FROM_TESTS "= ?1", "SELECT " USE_FIELDS FROM_USES "= ?1"});
}

const char* SelectName(int kind)
{
    return ofKind(kind, {"SELECT AssessmentName, Available IS 1" FROM_ASSESSMENTS "= ?1",
                         "SELECT Topic, Available IS 1" FROM_TOPICS "= ?1",
                         "SELECT SubTopic, Available IS 1" FROM_SUBTOPICS "= ?1",
                         "SELECT Answer, Available IS 1" FROM_QUESTIONS "= ?1",
                         "SELECT ClassName, Available IS 1" FROM_CLASSES "= ?1",
                         "SELECT TestName, Available IS 1" FROM_TESTS "= ?1",
                         "SELECT Answer, 1 FROM PlusUses LEFT JOIN Questions USING (SOLIndex) "
                         "WHERE UseID = ?1"});
}

const char* UpdateFromImage(int kind)
{
    return ofKind(
        kind,
        {"UPDATE Assessments SET Available = ?2 ->> 0, AssessmentName = ?2 ->> 1 "
         "WHERE AssessmentNum = ?1",
         "UPDATE Topics SET Available = ?2 ->> 0, Topic = ?2 ->> 1, AssessmentNum = ?2 ->> 2 "
         "WHERE TopicID = ?1",
         "UPDATE SubTopics SET Available = ?2 ->> 0, SubTopic = ?2 ->> 1, TopicID = ?2 ->> 2, "
         "AssessmentNum = ?2 ->> 3 WHERE SubtopicNum = ?1",
         "UPDATE Questions SET Available = ?2 ->> 0, Answer = ?2 ->> 1, TopicID = ?2 ->> 2, "
         "SubTopicNum = ?2 ->> 3, AssessmentNum = ?2 ->> 4 WHERE SOLIndex = ?1",
         "UPDATE PlusClasses SET Available = ?2 ->> 0, ClassName = ?2 ->> 1 WHERE ClassID = ?1",
         "UPDATE PlusTests SET Available = ?2 ->> 0, TestName = ?2 ->> 1, Options = ?2 ->> 2 "
         "WHERE TestID = ?1",
         "UPDATE PlusUses SET Outcome = ?2 ->> 2 WHERE UseID = ?1"});
}

const char* UpdateAvailable(int kind)
{
    return ofKind(kind, {"Update Assessments set Available = true where AssessmentNum = ?1",
                         "Update Topics set Available = true where TopicID = ?1",
                         "Update Subtopics set Available = true where SubtopicNum = ?1",
                         "Update Questions set Available = true where SOLIndex = ?1",
                         "UPDATE PlusClasses SET Available = 1 WHERE ClassID = ?1",
                         "UPDATE PlusTests SET Available = 1 WHERE TestID = ?1"});
}

const char* UpdateName(int kind)
{
    return ofKind(kind, {"Update Assessments set AssessmentName = ?2 where AssessmentNum = ?1",
                         "Update Topics set Topic = ?2 where TopicID = ?1",
                         "Update Subtopics set SubTopic = ?2 where SubtopicNum = ?1",
                         "Update Questions set Answer = ?2 where SOLIndex = ?1",
                         "UPDATE PlusClasses SET ClassName = ?2 WHERE ClassID = ?1",
                         "UPDATE PlusTests SET TestName = ?2 WHERE TestID = ?1"});
}

const char* SelectLargestKey(int kind)
{
    return ofKind(kind, {"SELECT coalesce(max(AssessmentNum), 0) FROM Assessments",
                         "SELECT coalesce(max(TopicID), 0) FROM Topics",
                         "SELECT coalesce(max(SubtopicNum), 0) FROM SubTopics",
                         "SELECT coalesce(max(SOLIndex), 0) FROM Questions"});
}

const char* SelectKeysAbove(int kind)
{
    return ofKind(kind, {"SELECT AssessmentNum" FROM_ASSESSMENTS "> ?1 ORDER BY 1",
                         "SELECT TopicID" FROM_TOPICS "> ?1 ORDER BY 1",
                         "SELECT SubtopicNum" FROM_SUBTOPICS "> ?1 ORDER BY 1",
                         "SELECT SOLIndex" FROM_QUESTIONS "> ?1 ORDER BY 1"});
}

const char* SelectPlace(int kind)
{
    return ofKind(kind, {"SELECT 0, 0, 0" FROM_ASSESSMENTS "= ?1",
                         "SELECT AssessmentNum, 0, 0" FROM_TOPICS "= ?1",
                         "SELECT AssessmentNum, TopicID, 0" FROM_SUBTOPICS "= ?1",
                         "SELECT AssessmentNum, TopicID, SubTopicNum" FROM_QUESTIONS "= ?1"});
}

const char* InsertChange(int kind)
{
    return ofKind(kind, {INSERT_CHANGE("1", "AssessmentNum", ASSESSMENT_FIELDS) FROM_ASSESSMENTS
                         "= ?3 AND " ASSESSMENT_FIELDS " IS NOT ?4",
                         INSERT_CHANGE("2", "TopicID", TOPIC_FIELDS) FROM_TOPICS
                         "= ?3 AND " TOPIC_FIELDS " IS NOT ?4",
                         INSERT_CHANGE("3", "SubtopicNum", SUBTOPIC_FIELDS) FROM_SUBTOPICS
                         "= ?3 AND " SUBTOPIC_FIELDS " IS NOT ?4",
                         INSERT_CHANGE("4", "SOLIndex", QUESTION_FIELDS) FROM_QUESTIONS
                         "= ?3 AND " QUESTION_FIELDS " IS NOT ?4",
                         INSERT_CHANGE("5", "ClassID", CLASS_FIELDS) FROM_CLASSES
                         "= ?3 AND " CLASS_FIELDS " IS NOT ?4",
                         INSERT_CHANGE("6", "TestID", TEST_FIELDS) FROM_TESTS
                         "= ?3 AND " TEST_FIELDS " IS NOT ?4",
                         INSERT_CHANGE("7", "UseID", USE_FIELDS) FROM_USES "= ?3 AND " USE_FIELDS
                                                                           " IS NOT ?4"});
}

const char InsertPictureChange[] =
    "INSERT INTO PlusChanges (At, Step, Kind, ItemKey, Before, After) SELECT ?1, ?2, 4, SOLIndex, "
    "json_insert(" QUESTION_FIELDS ", '$[#]', ?4), json_insert(" QUESTION_FIELDS
    ", '$[#]', ?5)" FROM_QUESTIONS "= ?3";

const char* InsertAdded(int kind)
{
    return ofKind(kind,
                  {INSERT_ADDED("1", "AssessmentNum", ASSESSMENT_FIELDS) FROM_ASSESSMENTS "> ?3",
                   INSERT_ADDED("2", "TopicID", TOPIC_FIELDS) FROM_TOPICS "> ?3",
                   INSERT_ADDED("3", "SubtopicNum", SUBTOPIC_FIELDS) FROM_SUBTOPICS "> ?3",
                   INSERT_ADDED("4", "SOLIndex", QUESTION_FIELDS) FROM_QUESTIONS "> ?3"});
}

const char* SelectGone(int kind)
{
    return ofKind(kind, {"SELECT AssessmentNum FROM Assessments WHERE Available IS NOT 1",
                         "SELECT TopicID FROM Topics WHERE Available IS NOT 1",
                         "SELECT SubtopicNum FROM SubTopics WHERE Available IS NOT 1",
                         "SELECT SOLIndex FROM Questions WHERE Available IS NOT 1",
                         "SELECT ClassID FROM PlusClasses WHERE Available IS NOT 1",
                         "SELECT TestID FROM PlusTests WHERE Available IS NOT 1"});
}

const char* SelectTrashTexts(int kind)
{
    return ofKind(kind, {"SELECT " ASSESSMENT_TEXTS " WHERE i.AssessmentNum = ?1",
                         "SELECT " TOPIC_TEXTS " WHERE i.TopicID = ?1",
                         "SELECT " SUBTOPIC_TEXTS " WHERE i.SubtopicNum = ?1",
                         "SELECT " QUESTION_TEXTS " WHERE i.SOLIndex = ?1",
                         "SELECT " CLASS_TEXTS " WHERE i.ClassID = ?1",
                         "SELECT " TEST_TEXTS " WHERE i.TestID = ?1"});
}

const char* SelectAllTrashTexts(int kind)
{
    return ofKind(kind, {"SELECT i.AssessmentNum, " ASSESSMENT_TEXTS " WHERE i.Available IS NOT 1",
                         "SELECT i.TopicID, " TOPIC_TEXTS " WHERE i.Available IS NOT 1",
                         "SELECT i.SubtopicNum, " SUBTOPIC_TEXTS " WHERE i.Available IS NOT 1",
                         "SELECT i.SOLIndex, " QUESTION_TEXTS
                         " WHERE i.Available IS NOT 1 OR a.Available IS NOT 1",
                         "SELECT i.ClassID, " CLASS_TEXTS " WHERE i.Available IS NOT 1",
                         "SELECT i.TestID, " TEST_TEXTS " WHERE i.Available IS NOT 1"});
}

const char* CountKeysAbove(int kind)
{
    return ofKind(kind,
                  {"SELECT count(*) FROM Assessments WHERE Available = 1 AND AssessmentNum > ?1",
                   "SELECT count(*) FROM Topics WHERE Available = 1 AND TopicID > ?1",
                   "SELECT count(*) FROM SubTopics WHERE Available = 1 AND SubtopicNum > ?1",
                   "SELECT count(*) FROM Questions WHERE Available = 1 AND SOLIndex > ?1"});
}

const char* SelectWithApostrophe(int kind)
{
    return ofKind(
        kind, {"SELECT AssessmentNum FROM Assessments WHERE Available = 1 AND "
               "instr(AssessmentName, '''')",
               "SELECT TopicID FROM Topics WHERE Available = 1 AND instr(Topic, '''')",
               "SELECT SubtopicNum FROM SubTopics WHERE Available = 1 AND instr(SubTopic, '''')",
               "SELECT SOLIndex FROM Questions WHERE Available = 1 AND instr(Answer, '''')"});
}

} // namespace varnholt::plus_statements
