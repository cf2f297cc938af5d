// Changes of many rows in one step.

#include "library/library_change.h"
#include "store/plus_statements.h"
#include "store/statements.h"

namespace varnholt {

namespace {

QString deleteStatement(Item item)
{
    switch (item.kind) {
    case ItemKind::Assessment:
        return statements::DeleteAssessment(item.key);
    case ItemKind::Topic:
        return statements::DeleteTopic(item.key);
    case ItemKind::Subtopic:
        return statements::DeleteSubtopic(item.key);
    default:
        break;
    }
    return statements::DeleteQuestion(item.key);
}

} // namespace

void Library::deleteRows(const std::vector<Item>& items)
{
    requireFeatures();
    Change change(*this);
    for (const Item item : items) {
        change.touch(item);
        connection_.execute(deleteStatement(item));
    }
    change.commit();
}

void Library::replaceTexts(const std::vector<NamedItem>& texts)
{
    requireFeatures();
    Change change(*this);
    for (const NamedItem& text : texts) {
        change.touch(text.item);
        Statement(connection_, plus_statements::UpdateName(static_cast<int>(text.item.kind)))
            .bind(1, std::int64_t{text.item.key})
            .bind(2, text.name)
            .run();
    }
    change.commit();
}

} // namespace varnholt
