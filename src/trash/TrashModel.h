#pragma once

#include "library/Trash.h"
#include "pictures/ThumbnailLoader.h"

#include <QAbstractTableModel>
#include <QCache>
#include <QHash>
#include <QPixmap>

#include <optional>

namespace varnholt {

class Library;

/// The rows of the trash as a table. Texts and pictures are read when a row is shown, so that a
/// trash of any size opens at once.
class TrashModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        What,
        Place,
        Deleted,
        Columns
    };

    /// `pictureSize` is what a question's picture has to fit into, in device independent pixels.
    /// The library outlives the model.
    TrashModel(Library& library, QSize pictureSize, qreal pixelRatio);

    /// Reads the trash anew. Throws `DatabaseError`; there are no rows then.
    void reload();
    /// Shows only what holds every word of the filter. Throws `DatabaseError`.
    void setFilter(const QString& filter);

    [[nodiscard]] Item item(int row) const;
    /// What a user calls a row: "Topic Algebra".
    [[nodiscard]] QString name(int row) const;
    /// All rows, whether the filter shows them or not.
    [[nodiscard]] std::size_t size() const { return trash_ ? trash_->entries().size() : 0; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    [[nodiscard]] const TrashEntry& entry(int row) const;
    [[nodiscard]] TrashTexts texts(int row) const;
    [[nodiscard]] QString text(int row, int column) const;
    [[nodiscard]] QPixmap picture(std::int32_t key) const;
    void pictureCame(std::int32_t key, const QImage& picture);

    Library& library_;
    QSize pictureSize_;
    qreal pixelRatio_;
    QString filter_;
    std::optional<Trash> trash_;
    /// Positions in the trash of the rows on show.
    std::vector<std::size_t> shown_;
    mutable QCache<std::size_t, TrashTexts> texts_;
    mutable QCache<std::int32_t, QPixmap> pictures_;
    mutable ThumbnailLoader loader_;
};

/// A kind of row and its name as a user calls it.
[[nodiscard]] QString NameInWords(const NamedItem& item);

} // namespace varnholt
