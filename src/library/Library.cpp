#include "library/Library.h"

#include "library/library_change.h"
#include "library/question_picture.h"
#include "pictures/picture_files.h"
#include "store/library_file.h"
#include "store/plus_statements.h"
#include "store/services.h"
#include "store/statements.h"

#include <QFile>

namespace varnholt {

namespace sql = plus_statements;

Library::Library(QString programFolder, const Clock& clock, std::vector<QString> scripts)
    : programFolder_(std::move(programFolder))
    , clock_(clock)
    , tables_(connection_, std::move(scripts))
    , journal_(connection_)
{}

Library::~Library()
{
    close();
}

void Library::open(Connection::Access access)
{
    close();
    OpenLibraryDatabase(connection_, programFolder_, access);
    refresh();
}

void Library::close()
{
    journal_.clear();
    tables_.clear();
    CloseLibraryDatabase(connection_);
}

void Library::refresh()
{
    journal_.clear();
    tables_.refresh();
}

std::int64_t Library::now() const
{
    constexpr std::int64_t millisecondsPerSecond = 1000;
    return clock_.millisecondsSinceEpoch() / millisecondsPerSecond;
}

std::int32_t Library::newestKey(const QString& statement, const char* field)
{
    Recordset rows = connection_.read(statement);
    const int key = rows.field(field);
    if (!rows.next()) {
        throw DatabaseError(tr("The row just added was not found in the library."));
    }
    return rows.integer(key);
}

std::int32_t Library::addAssessment(const QString& name)
{
    Change change(*this);
    connection_.execute(statements::InsertAssessment(name));
    // The new one is the last in the order of the database.
    Recordset rows = connection_.read(statements::SelectAssessments());
    const int number = rows.field("AssessmentNum");
    std::int32_t last = 0;
    while (rows.next()) {
        last = rows.integer(number);
    }
    change.add({ItemKind::Assessment, last});
    change.commit();
    return last;
}

std::int32_t Library::addTopic(std::int32_t assessmentNum, const QString& name)
{
    return addTopics(assessmentNum, {name}).front();
}

std::vector<std::int32_t> Library::addTopics(std::int32_t assessmentNum, const QStringList& names)
{
    Change change(*this);
    std::vector<std::int32_t> keys;
    for (const QString& name : names) {
        connection_.execute(statements::InsertTopic(name, assessmentNum));
        keys.push_back(newestKey(statements::SelectTopicsNewestFirst(assessmentNum), "TopicID"));
        change.add({ItemKind::Topic, keys.back()});
    }
    change.commit();
    return keys;
}

std::int32_t Library::addSubtopic(std::int32_t assessmentNum, std::int32_t topicId,
                                  const QString& name)
{
    return addSubtopics(assessmentNum, topicId, {name}).front();
}

std::vector<std::int32_t> Library::addSubtopics(std::int32_t assessmentNum, std::int32_t topicId,
                                                const QStringList& names)
{
    Change change(*this);
    std::vector<std::int32_t> keys;
    for (const QString& name : names) {
        connection_.execute(statements::InsertSubtopic(topicId, name, assessmentNum));
        keys.push_back(
            newestKey(statements::SelectSubtopicsNewestFirst(assessmentNum), "SubtopicNum"));
        change.add({ItemKind::Subtopic, keys.back()});
    }
    change.commit();
    return keys;
}

void Library::deleteRow(Item item, const QString& statement)
{
    Change change(*this);
    change.touch(item);
    connection_.execute(statement);
    change.commit();
}

void Library::deleteAssessment(std::int32_t assessmentNum)
{
    deleteRow({ItemKind::Assessment, assessmentNum}, statements::DeleteAssessment(assessmentNum));
}

void Library::deleteTopic(std::int32_t topicId)
{
    deleteRow({ItemKind::Topic, topicId}, statements::DeleteTopic(topicId));
}

void Library::deleteSubtopic(std::int32_t subtopicNum)
{
    deleteRow({ItemKind::Subtopic, subtopicNum}, statements::DeleteSubtopic(subtopicNum));
}

void Library::deleteQuestion(std::int32_t solIndex)
{
    deleteRow({ItemKind::Question, solIndex}, statements::DeleteQuestion(solIndex));
}

void Library::editQuestion(std::int32_t solIndex, std::int32_t topicId, std::int32_t subtopicNum,
                           const QString& answer)
{
    Change change(*this);
    change.touch({ItemKind::Question, solIndex});
    connection_.execute(statements::UpdateQuestion(solIndex, topicId, subtopicNum, answer));
    change.commit();
}

std::int32_t Library::addQuestion(const Filing& filing, const QString& answer,
                                  const PictureWriter& writePicture)
{
    Change change(*this);
    const std::int32_t key = addRow(change, filing, answer);
    placePicture(change, key, writePicture);
    return key;
}

std::int32_t Library::addRow(Change& change, const Filing& filing, const QString& answer)
{
    connection_.execute(statements::InsertQuestion(filing.TopicID, answer, filing.AssessmentNum,
                                                   filing.SubtopicNum));
    const std::int32_t key =
        newestKey(statements::SelectQuestionsNewestFirst(filing.AssessmentNum), "SOLIndex");
    change.add({ItemKind::Question, key});
    return key;
}

void Library::completeQuestion(std::int32_t solIndex, const Filing& filing, const QString& answer,
                               const PictureWriter& writePicture)
{
    Change change(*this);
    change.touch({ItemKind::Question, solIndex});
    connection_.execute(
        statements::UpdateQuestion(solIndex, filing.TopicID, filing.SubtopicNum, answer));
    placePicture(change, solIndex, writePicture);
}

void Library::placePicture(Change& change, std::int32_t key, const PictureWriter& writePicture)
{
    try {
        SetOldPictureAside(programFolder_, key);
        writePicture(NewPictureFile(programFolder_, key));
    } catch (const std::exception& failure) {
        if (HasPictureFile(programFolder_, key)) {
            throw;
        }
        change.commit();
        const QString withoutPicture =
            tr("The question is in the library without its picture: save again to add it.");
        const auto* known = dynamic_cast<const Error*>(&failure);
        throw PictureMissing(known ? known->message() + u' ' + withoutPicture : withoutPicture,
                             key);
    }
    try {
        change.commit();
    } catch (const Error&) {
        QFile::remove(NewPictureFile(programFolder_, key));
        throw;
    }
}

void Library::rememberAssessment(std::int32_t assessmentNum)
{
    connection_.execute(statements::UpdateHistory(assessmentNum));
}

void Library::requireFeatures() const
{
    if (const FeatureState state = features(); !state.on) {
        throw Error(state.reason);
    }
}

QString Library::storedName(ItemKind kind, const QString& name)
{
    return kind == ItemKind::Assessment ? name : name.trimmed();
}

void Library::rename(Item item, const QString& name)
{
    requireFeatures();
    const QString stored = storedName(item.kind, name);
    if (item.kind == ItemKind::Question || stored.isEmpty()) {
        throw Error(tr("A name is needed."));
    }
    // The statements of the classic program hold their values in their text.
    if (item.kind < ItemKind::Question && !statements::canHold(stored)) {
        throw Error(tr("A name cannot hold an apostrophe (')."));
    }
    Change change(*this);
    if (item.kind == ItemKind::Class) {
        requireFreeClass(stored, item.key);
    }
    change.touch(item);
    Statement(connection_, sql::UpdateName(static_cast<int>(item.kind)))
        .bind(1, std::int64_t{item.key})
        .bind(2, stored)
        .run();
    change.commit();
}

RestoreOutcome Library::restore(Item item, const QString& newName)
{
    const RestorePlan plan = planRestore(item);
    std::map<std::int32_t, QString> newNames;
    if (plan.nameTaken) {
        newNames.emplace(plan.nameTaken->item.key, newName);
    }
    return restore(std::vector{item}, newNames).outcome;
}

QString Library::freeName(const NamedItem& taken, const std::map<std::int32_t, QString>& newNames)
{
    const auto found = newNames.find(taken.item.key);
    if (found == newNames.end() || found->second.isEmpty()) {
        return {};
    }
    if (!statements::canHold(found->second)) {
        throw Error(tr("A name cannot hold an apostrophe (')."));
    }
    return IsAssessmentNameTaken(connection_, found->second, taken.item.key) ? QString()
                                                                             : found->second;
}

void Library::bringBack(Change& change, const NamedItem& row, const QString& newName)
{
    if (row.item.kind == ItemKind::Class) {
        requireFreeClass(row.name, row.item.key);
    }
    change.touch(row.item);
    const int kind = static_cast<int>(row.item.kind);
    Statement(connection_, sql::UpdateAvailable(kind)).bind(1, std::int64_t{row.item.key}).run();
    if (!newName.isEmpty()) {
        Statement(connection_, sql::UpdateName(kind))
            .bind(1, std::int64_t{row.item.key})
            .bind(2, newName)
            .run();
    }
}

RestoreResult Library::restore(const std::vector<Item>& items,
                               const std::map<std::int32_t, QString>& newNames,
                               const std::function<void(std::size_t done)>& progress)
{
    requireFeatures();
    RestoreResult result;
    Change change(*this);
    for (std::size_t i = 0; i < items.size(); ++i) {
        // Looked at inside the transaction: what came back with a row before it is there already.
        const RestorePlan plan = planRestore(items[i]);
        if (plan.nothingToDo) {
            continue;
        }
        if (plan.placeMissing) {
            return {RestoreOutcome::PlaceMissing, plan.item, {}};
        }
        QString newName;
        if (plan.nameTaken) {
            newName = freeName(*plan.nameTaken, newNames);
            if (newName.isEmpty()) {
                return {RestoreOutcome::NameTaken, plan.nameTaken, {}};
            }
        }
        // A step is about its first row, the one that was asked for.
        std::vector<NamedItem> rows = plan.alsoBack;
        rows.insert(rows.begin(), plan.item);
        for (const NamedItem& row : rows) {
            const bool renamed = plan.nameTaken && plan.nameTaken->item == row.item;
            bringBack(change, row, renamed ? newName : QString());
            result.back.push_back(row);
        }
        if (progress) {
            progress(i + 1);
        }
    }
    if (!result.back.empty()) {
        change.commit();
        result.outcome = RestoreOutcome::Done;
    }
    return result;
}

std::optional<StepInfo> Library::undoStep()
{
    return tables_.exist() && features().on ? journal_.undoStep() : std::nullopt;
}

std::optional<StepInfo> Library::redoStep()
{
    return tables_.exist() && features().on ? journal_.redoStep() : std::nullopt;
}

UndoOutcome Library::undo()
{
    return turn(&Journal::undo);
}

UndoOutcome Library::redo()
{
    return turn(&Journal::redo);
}

UndoOutcome Library::turn(UndoOutcome (Journal::*direction)(std::int64_t))
{
    UndoOutcome outcome;
    if (!features().on) {
        outcome.result = UndoOutcome::Result::Off;
        return outcome;
    }
    if (!tables_.exist()) {
        return outcome;
    }
    Transaction transaction(connection_);
    connection_.requireInPlace();
    outcome = (journal_.*direction)(now());
    if (outcome.result == UndoOutcome::Result::Done) {
        putPictures(outcome.pictures, transaction);
        Q_EMIT changed({outcome.changed});
    }
    return outcome;
}

} // namespace varnholt
