#include "library/library_change.h"

#include "store/plus_statements.h"

namespace varnholt {

namespace sql = plus_statements;

namespace {

Item useItem(std::int64_t useId)
{
    return {ItemKind::Use, static_cast<std::int32_t>(useId)};
}

/// `statement` takes the test, the position and what stands there.
void writeItems(Connection& connection, const char* statement, std::int32_t testId,
                const std::vector<TestItem>& items)
{
    Statement write(connection, statement);
    write.bind(1, std::int64_t{testId});
    for (const TestItem& item : items) {
        write.bind(2, std::int64_t{item.position})
            .bind(3, std::int64_t{item.SOLIndex})
            .bind(4, item.answer)
            .bind(5, item.topicText)
            .bindBlob(6, item.pictureSha)
            .run();
    }
}

} // namespace

UseBook Library::useBook(std::int32_t assessmentNum)
{
    return tables_.exist() ? UseBook::read(connection_, assessmentNum) : UseBook();
}

void Library::changeRow(Item item, Statement& statement)
{
    Change change(*this);
    change.touch(item);
    statement.bind(1, std::int64_t{item.key}).run();
    change.commit();
}

std::int32_t Library::classKey(Change& change, const QString& name)
{
    const QString stored = storedName(ItemKind::Class, name);
    if (stored.isEmpty()) {
        return UseBook::anybody;
    }
    // The tables are there by now, which `pastTests` learns when they have become last.
    if (const std::int32_t known = PastTests(connection_, true).classNamed(stored)) {
        return known;
    }
    Statement insert(connection_, sql::InsertClass);
    insert.bind(1, stored).next();
    const auto key = static_cast<std::int32_t>(insert.integer(0));
    change.add({ItemKind::Class, key});
    return key;
}

void Library::requireFreeClass(const QString& name, std::int32_t except)
{
    const std::int32_t taken = PastTests(connection_, true).classNamed(name);
    if (taken != 0 && taken != except) {
        throw Error(
            tr("There is a class “%1” already. Give that one another name first.").arg(name));
    }
}

std::int32_t Library::addClass(const QString& name)
{
    requireFeatures();
    Change change(*this);
    const std::int32_t key = classKey(change, name);
    if (key == UseBook::anybody) {
        throw Error(tr("A name is needed."));
    }
    change.commit();
    return key;
}

void Library::deleteClass(std::int32_t classId)
{
    requireFeatures();
    Statement statement(connection_, sql::DeleteClass);
    changeRow({ItemKind::Class, classId}, statement);
}

std::int32_t Library::insertTest(Change& change, const NewTest& test, TestKind kind)
{
    const std::int32_t classId = classKey(change, test.className);
    Statement insert(connection_, sql::InsertTest);
    insert.bind(1, test.name)
        .bind(2, std::int64_t{test.AssessmentNum})
        .bind(3, std::int64_t{classId})
        .bind(4, now())
        .bind(5, std::int64_t{static_cast<int>(kind)})
        .bind(6, static_cast<std::int64_t>(test.seed))
        .bind(7, test.options.toJson())
        .next();
    const auto key = static_cast<std::int32_t>(insert.integer(0));
    insert.reset();
    writeItems(connection_, sql::InsertTestItem, key, test.items);
    change.add({ItemKind::Test, key});
    return key;
}

void Library::turnKept(Change& change, std::int32_t keptTestId, TestKind kind,
                       const std::vector<TestItem>& items)
{
    Statement(connection_, sql::TurnKeptTest)
        .bind(1, std::int64_t{keptTestId})
        .bind(2, std::int64_t{static_cast<int>(kind)})
        .bind(3, now())
        .run();
    writeItems(connection_, sql::UpdateTestItem, keptTestId, items);
    change.add({ItemKind::Test, keptTestId});
}

void Library::insertUses(std::int32_t testId)
{
    Statement(connection_, sql::InsertTestUses).bind(1, std::int64_t{testId}).bind(2, now()).run();
}

std::int32_t Library::recordTest(const NewTest& test, TestKind kind)
{
    requireFeatures();
    Change change(*this);
    const std::int32_t key = insertTest(change, test, kind);
    insertUses(key);
    change.commitUnrecorded();
    return key;
}

void Library::recordTest(std::int32_t keptTestId, TestKind kind, const std::vector<TestItem>& items)
{
    requireFeatures();
    Change change(*this);
    turnKept(change, keptTestId, kind, items);
    insertUses(keptTestId);
    change.commitUnrecorded();
}

std::int32_t Library::keepTest(const NewTest& test)
{
    requireFeatures();
    Change change(*this);
    const std::int32_t key = insertTest(change, test, TestKind::Kept);
    change.commitUnrecorded();
    return key;
}

std::int32_t Library::beginShow(const NewTest& test)
{
    requireFeatures();
    Change change(*this);
    const std::int32_t key = insertTest(change, test, TestKind::Shown);
    change.commitUnrecorded();
    return key;
}

void Library::beginShow(std::int32_t keptTestId, const std::vector<TestItem>& items)
{
    requireFeatures();
    Change change(*this);
    turnKept(change, keptTestId, TestKind::Shown, items);
    change.commitUnrecorded();
}

void Library::setTestItems(std::int32_t testId, const std::vector<TestItem>& items)
{
    requireFeatures();
    Change change(*this);
    writeItems(connection_, sql::UpdateTestItem, testId, items);
    change.add({ItemKind::Test, testId});
    change.commitUnrecorded();
}

std::int64_t Library::recordUse(std::int32_t testId, std::int32_t solIndex)
{
    requireFeatures();
    Change change(*this);
    Statement insert(connection_, sql::InsertUse);
    insert.bind(1, std::int64_t{testId}).bind(2, std::int64_t{solIndex}).bind(3, now());
    if (!insert.next()) {
        throw DatabaseError(tr("The test is not in the library."));
    }
    const std::int64_t key = insert.integer(0);
    insert.reset();
    change.add(useItem(key));
    change.commitUnrecorded();
    return key;
}

void Library::recordOutcome(const std::vector<std::int64_t>& useIds, Outcome outcome)
{
    requireFeatures();
    Change change(*this);
    Statement update(connection_, sql::UpdateOutcome);
    update.bind(2, std::int64_t{static_cast<int>(outcome)});
    for (const std::int64_t useId : useIds) {
        change.touch(useItem(useId));
        update.bind(1, useId).run();
    }
    change.commit();
}

void Library::setTestUsed(std::int32_t testId, bool used)
{
    requireFeatures();
    Statement statement(connection_, sql::UpdateTestUnused);
    statement.bind(2, std::int64_t{used ? 0 : 1});
    changeRow({ItemKind::Test, testId}, statement);
}

void Library::deleteTest(std::int32_t testId)
{
    requireFeatures();
    Statement statement(connection_, sql::DeleteTest);
    changeRow({ItemKind::Test, testId}, statement);
}

} // namespace varnholt
