#include "library/Journal.h"

#include "store/connection.h"
#include "store/plus_statements.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace varnholt {

namespace sql = plus_statements;

namespace {

/// An image begins with whether the row is available.
bool saysAvailable(const QByteArray& image)
{
    return image.startsWith("[1,");
}

QString nameIn(const QByteArray& image)
{
    return QJsonDocument::fromJson(image).array().at(1).toString();
}

/// The place of a picture's mark in the image of a question.
constexpr int markPlace = 5;

/// The picture's mark in a question's image; empty where it has none.
QString markIn(const QByteArray& image)
{
    return QJsonDocument::fromJson(image).array().at(markPlace).toString();
}

/// A question's image as it would be with a picture of that mark.
QByteArray withMark(const QByteArray& image, const QString& mark)
{
    return mark.isEmpty() || image.isEmpty() ? image
                                             : image.chopped(1) + ",\"" + mark.toLatin1() + "\"]";
}

StepKind kindOf(Item subject, const QByteArray& before, const QByteArray& after, bool alone)
{
    if (before.isNull()) {
        return subject.kind == ItemKind::Assessment && !alone ? StepKind::Import : StepKind::Add;
    }
    if (saysAvailable(before) != saysAvailable(after)) {
        return saysAvailable(after) ? StepKind::Restore : StepKind::Delete;
    }
    const bool sameName = nameIn(before) == nameIn(after);
    return subject.kind == ItemKind::Question || sameName ? StepKind::Edit : StepKind::Rename;
}

} // namespace

Journal::Journal(Connection& connection)
    : connection_(connection)
{}

Journal::~Journal() = default;

void Journal::clear()
{
    ready_.clear();
}

Statement& Journal::ready(const char* sql)
{
    std::unique_ptr<Statement>& statement = ready_[sql];
    if (!statement) {
        statement = std::make_unique<Statement>(connection_, sql);
    }
    return *statement;
}

Statement& Journal::ready(StatementOfKind sql, ItemKind kind)
{
    return ready(sql(static_cast<int>(kind)));
}

std::int64_t Journal::nextStep()
{
    Statement& next = ready(sql::SelectNextStep);
    redoIsPossible_ = false;
    if (!next.next()) {
        return 1;
    }
    const std::int64_t step = next.integer(0);
    redoIsPossible_ = next.integer(1) != 0;
    next.reset();
    return step;
}

void Journal::endStep(std::int64_t step)
{
    if (redoIsPossible_) {
        ready(sql::DropRedoSteps).bind(1, step).run();
    }
}

QByteArray Journal::image(Item item)
{
    Statement& select = ready(&sql::SelectImage, item.kind);
    select.bind(1, std::int64_t{item.key});
    if (!select.next()) {
        return {};
    }
    QByteArray image = select.bytes(0);
    select.reset();
    return image;
}

void Journal::record(std::int64_t step, std::int64_t now, Item item, const QByteArray& before)
{
    ready(&sql::InsertChange, item.kind)
        .bind(1, now)
        .bind(2, step)
        .bind(3, std::int64_t{item.key})
        .bind(4, before)
        .run();
}

void Journal::recordAdded(std::int64_t step, std::int64_t now, ItemKind kind,
                          std::int64_t largestKeyBefore)
{
    ready(&sql::InsertAdded, kind).bind(1, now).bind(2, step).bind(3, largestKeyBefore).run();
}

void Journal::recordPicture(std::int64_t step, std::int64_t now, const TurnedPicture& picture)
{
    ready(sql::InsertPictureChange)
        .bind(1, now)
        .bind(2, step)
        .bind(3, std::int64_t{picture.SOLIndex})
        .bind(4, picture.from)
        .bind(5, picture.to)
        .run();
}

NamedItem Journal::named(Item item)
{
    Statement& select = ready(&sql::SelectName, item.kind);
    select.bind(1, std::int64_t{item.key});
    NamedItem result{item, {}};
    if (select.next()) {
        result.name = select.text(0);
        select.reset();
    }
    return result;
}

std::vector<Journal::ChangedRow> Journal::rowsOf(std::int64_t recordedStep)
{
    std::vector<ChangedRow> rows;
    Statement& select = ready(sql::SelectStep);
    select.bind(1, recordedStep);
    while (select.next()) {
        rows.push_back({{static_cast<ItemKind>(select.integer(0)),
                         static_cast<std::int32_t>(select.integer(1))},
                        select.bytes(2),
                        select.bytes(3),
                        select.bytes(4)});
    }
    return rows;
}

std::optional<StepInfo> Journal::info(const char* select, bool done)
{
    Statement& newest = ready(select);
    if (!newest.next()) {
        return std::nullopt;
    }
    const std::int64_t step = newest.integer(0);
    newest.reset();
    Statement& rows = ready(sql::SelectStep);
    rows.bind(1, done ? step : -step);
    if (!rows.next()) {
        return std::nullopt;
    }
    const Item subject{static_cast<ItemKind>(rows.integer(0)),
                       static_cast<std::int32_t>(rows.integer(1))};
    const QByteArray before = rows.bytes(2);
    const QByteArray after = rows.bytes(3);
    const bool alone = !rows.next();
    rows.reset();
    StepInfo found{step, kindOf(subject, before, after, alone), named(subject)};
    if (!alone) {
        Statement& count = ready(sql::CountInStep);
        count.bind(1, done ? step : -step).bind(2, static_cast<std::int64_t>(subject.kind));
        found.rows = count.next() ? static_cast<int>(count.integer(0)) : 1;
        count.reset();
    }
    return found;
}

std::optional<StepInfo> Journal::undoStep()
{
    return info(sql::SelectUndoStep, true);
}

std::optional<StepInfo> Journal::redoStep()
{
    return info(sql::SelectRedoStep, false);
}

UndoOutcome Journal::undo(std::int64_t now)
{
    const std::optional<StepInfo> step = undoStep();
    return turn(step, step ? step->step : 0, true, now);
}

UndoOutcome Journal::redo(std::int64_t now)
{
    const std::optional<StepInfo> step = redoStep();
    return turn(step, step ? -step->step : 0, false, now);
}

UndoOutcome Journal::turn(std::optional<StepInfo> step, std::int64_t recordedStep, bool done,
                          std::int64_t now)
{
    UndoOutcome outcome;
    outcome.step = std::move(step);
    if (!outcome.step) {
        return outcome;
    }
    outcome.result = UndoOutcome::Result::ChangedSince;
    for (const ChangedRow& row : rowsOf(recordedStep)) {
        const QByteArray& before = row.before.isNull() ? row.withdrawn : row.before;
        const bool mayHaveMark = row.item.kind == ItemKind::Question;
        const QString from = mayHaveMark ? markIn(done ? row.after : before) : QString();
        const QString to = mayHaveMark ? markIn(done ? before : row.after) : QString();
        if (withMark(image(row.item), from) != (done ? row.after : before)) {
            outcome.inTheWay.push_back(named(row.item));
            continue;
        }
        ready(&sql::UpdateFromImage, row.item.kind)
            .bind(1, std::int64_t{row.item.key})
            .bind(2, done ? before : row.after)
            .run();
        outcome.changed.push_back(row.item);
        if (from != to) {
            outcome.pictures.push_back({row.item.key, from, to});
        }
    }
    if (outcome.inTheWay.empty()) {
        addRows(outcome.inTheWay, sql::SelectOrphans, recordedStep);
        addRows(outcome.inTheWay, sql::SelectGoneParents, recordedStep);
    }
    if (outcome.inTheWay.empty()) {
        addRows(outcome.inTheWay, sql::SelectSameNames, recordedStep);
        if (!outcome.inTheWay.empty()) {
            outcome.result = UndoOutcome::Result::NameTaken;
        }
    }
    if (outcome.inTheWay.empty()) {
        ready(sql::TurnStep).bind(1, recordedStep).bind(2, now).run();
        outcome.result = UndoOutcome::Result::Done;
    } else {
        outcome.changed.clear();
        outcome.pictures.clear();
    }
    return outcome;
}

void Journal::addRows(std::vector<NamedItem>& rows, const char* select, std::int64_t recordedStep)
{
    Statement& found = ready(select);
    found.bind(1, recordedStep);
    while (found.next()) {
        rows.push_back(named({static_cast<ItemKind>(found.integer(0)),
                              static_cast<std::int32_t>(found.integer(1))}));
    }
}

} // namespace varnholt
