#pragma once

#include "library/Library.h"

namespace varnholt {

/// One verb in the making: a transaction and a step of the journal. Undone unless committed. Rows
/// that are going to change are named before, new rows afterwards.
class Library::Change
{
public:
    explicit Change(Library& library);

    /// The row is about to be changed.
    void touch(Item item);
    /// The row has been added.
    void add(Item item);
    /// The question's picture has been replaced; marks as `PictureMark`'s.
    void picture(std::int32_t key, const QString& before, const QString& after);
    /// Rows of a kind are going to be added, nobody says which.
    void expect(ItemKind kind);

    /// Records what became of the rows, makes it last and tells.
    void commit();
    /// Makes the rows last without a step that could be undone.
    void commitUnrecorded();

private:
    struct Row
    {
        Item item;
        QByteArray before;
    };
    struct Expected
    {
        ItemKind kind;
        std::int64_t largestKey;
    };

    void record();
    void finish();

    Library& library_;
    Transaction transaction_;
    bool journalled_;
    bool madeTables_ = false;
    std::int64_t step_ = 0;
    std::vector<Row> rows_;
    std::vector<Expected> expected_;
    std::vector<TurnedPicture> pictures_;
};

} // namespace varnholt
