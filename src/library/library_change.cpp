#include "library/library_change.h"

#include "store/plus_statements.h"

namespace varnholt {

namespace {

/// The backup that an upgrade needs cannot be made inside the transaction.
Connection& prepared(PlusTables& tables, Connection& connection)
{
    if (tables.state().on) {
        tables.prepare();
    }
    return connection;
}

std::int64_t largestKey(Connection& connection, ItemKind kind)
{
    Statement select(connection, plus_statements::SelectLargestKey(static_cast<int>(kind)));
    return select.next() ? select.integer(0) : 0;
}

} // namespace

Library::Change::Change(Library& library)
    : library_(library)
    , transaction_(prepared(library.tables_, library.connection_))
    , journalled_(library.tables_.state().on)
{
    library_.connection_.requireInPlace();
    if (journalled_) {
        madeTables_ = library_.tables_.bringUpToDate();
        step_ = library_.journal_.nextStep();
    }
}

void Library::Change::touch(Item item)
{
    rows_.push_back({item, journalled_ ? library_.journal_.image(item) : QByteArray()});
}

void Library::Change::add(Item item)
{
    rows_.push_back({item, QByteArray()});
}

void Library::Change::picture(std::int32_t key, const QString& before, const QString& after)
{
    pictures_.push_back({key, before, after});
}

void Library::Change::expect(ItemKind kind)
{
    expected_.push_back({kind, largestKey(library_.connection_, kind)});
}

void Library::Change::record()
{
    const std::int64_t now = library_.now();
    for (const Row& row : rows_) {
        library_.journal_.record(step_, now, row.item, row.before);
    }
    for (const TurnedPicture& picture : pictures_) {
        library_.journal_.recordPicture(step_, now, picture);
    }
    for (const Expected& expected : expected_) {
        library_.journal_.recordAdded(step_, now, expected.kind, expected.largestKey);
    }
    library_.journal_.endStep(step_);
}

void Library::Change::commit()
{
    if (journalled_) {
        record();
    }
    finish();
}

void Library::Change::commitUnrecorded()
{
    finish();
}

void Library::Change::finish()
{
    LibraryChange change;
    for (const Row& row : rows_) {
        change.items.push_back(row.item);
    }
    for (const Expected& expected : expected_) {
        Statement added(library_.connection_,
                        plus_statements::SelectKeysAbove(static_cast<int>(expected.kind)));
        added.bind(1, expected.largestKey);
        while (added.next()) {
            change.items.push_back({expected.kind, static_cast<std::int32_t>(added.integer(0))});
        }
    }
    transaction_.commit();
    if (madeTables_) {
        library_.tables_.refresh();
    }
    Q_EMIT library_.changed(change);
}

} // namespace varnholt
