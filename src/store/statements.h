#pragma once

#include <QString>

#include <cstdint>

/// Every statement the program sends, and the only place where statement text is built.
///
/// Values are joined into the text: numbers in decimal, texts between single quotes exactly
/// as given. A text that holds a single quote (or a NUL character) cannot be written that
/// way: the function throws `DatabaseError`, as a failed statement would, and nothing can be
/// smuggled into a statement.
namespace varnholt::statements {

// Reading the catalogue.
QString SelectAssessments();
QString SelectHistory();
QString SelectTopics(std::int32_t assessmentNum);
QString SelectSubTopics(std::int32_t assessmentNum);
QString SelectQuestions(std::int32_t assessmentNum);

// Reading back what was just inserted: the first row is the newest.
QString SelectTopicsNewestFirst(std::int32_t assessmentNum);
QString SelectSubtopicsNewestFirst(std::int32_t assessmentNum);
QString SelectQuestionsNewestFirst(std::int32_t assessmentNum);

// Tidying up: whether there is, or was, a question of that key.
QString SelectQuestionWithKey(std::int32_t solIndex);

// Import.
QString SelectAssessmentsNamed(const QString& name);
/// One row with the field "NewAssessmentNum".
QString SelectMaxAssessmentNum();
/// The next three: one row with the field "MaxValue".
QString SelectMaxTopicID();
QString SelectMaxSubTopicNum();
QString SelectMaxSOLIndex();

// Writing.
QString UpdateHistory(std::int32_t assessmentNum);
QString InsertAssessment(const QString& name);
QString InsertTopic(const QString& name, std::int32_t assessmentNum);
QString InsertSubtopic(std::int32_t topicId, const QString& name, std::int32_t assessmentNum);
QString InsertQuestion(std::int32_t topicId, const QString& answer, std::int32_t assessmentNum,
                       std::int32_t subtopicNum);
QString UpdateQuestion(std::int32_t solIndex, std::int32_t topicId, std::int32_t subtopicNum,
                       const QString& answer);

// Soft deletion.
QString DeleteAssessment(std::int32_t assessmentNum);
QString DeleteTopic(std::int32_t topicId);
QString DeleteSubtopic(std::int32_t subtopicNum);
QString DeleteQuestion(std::int32_t solIndex);

/// True when a text can stand in a statement: the windows use it to warn beforehand.
[[nodiscard]] bool canHold(const QString& text);

} // namespace varnholt::statements
