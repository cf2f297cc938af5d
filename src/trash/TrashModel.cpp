#include "trash/TrashModel.h"

#include "library/Library.h"
#include "pictures/picture_files.h"
#include "toolkit/short_text.h"
#include "toolkit/thumbnail_pixmap.h"

#include <QDateTime>
#include <QLocale>

namespace varnholt {

namespace {

/// As many as a user scrolls to and fro between.
constexpr int keptTexts = 1000;
constexpr int keptPictures = 400;
constexpr qsizetype longestName = 200;

} // namespace

QString NameInWords(const NamedItem& item)
{
    const QString name = ShortLine(item.name, longestName);
    switch (item.item.kind) {
    case ItemKind::Assessment:
        return TrashModel::tr("Assessment %1").arg(name);
    case ItemKind::Topic:
        return TrashModel::tr("Topic %1").arg(name);
    case ItemKind::Subtopic:
        return TrashModel::tr("Subtopic %1").arg(name);
    case ItemKind::Class:
        return TrashModel::tr("Class %1").arg(name);
    case ItemKind::Test:
        return TrashModel::tr("Test %1").arg(name);
    case ItemKind::Question:
    case ItemKind::Use:
        break;
    }
    return name.isEmpty() ? TrashModel::tr("Question without an answer")
                          : TrashModel::tr("Question with the answer %1").arg(name);
}

TrashModel::TrashModel(Library& library, QSize pictureSize, qreal pixelRatio)
    : library_(library)
    , pictureSize_(pictureSize)
    , pixelRatio_(pixelRatio)
    , texts_(keptTexts)
    , pictures_(keptPictures)
    , loader_(static_cast<int>(pictureSize.width() * pixelRatio))
{
    connect(&loader_, &ThumbnailLoader::came, this, &TrashModel::pictureCame);
}

void TrashModel::reload()
{
    beginResetModel();
    texts_.clear();
    shown_.clear();
    trash_.reset();
    try {
        trash_.emplace(library_.trash());
        shown_ = trash_->matching(filter_);
    } catch (...) {
        trash_.reset();
        endResetModel();
        throw;
    }
    endResetModel();
}

void TrashModel::setFilter(const QString& filter)
{
    std::vector<std::size_t> shown = trash_ ? trash_->matching(filter) : std::vector<std::size_t>();
    beginResetModel();
    texts_.clear();
    filter_ = filter;
    shown_ = std::move(shown);
    endResetModel();
}

const TrashEntry& TrashModel::entry(int row) const
{
    return trash_->entries().at(shown_.at(static_cast<std::size_t>(row)));
}

Item TrashModel::item(int row) const
{
    return entry(row).item;
}

QString TrashModel::name(int row) const
{
    return NameInWords({item(row), texts(row).name});
}

int TrashModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int TrashModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Columns;
}

TrashTexts TrashModel::texts(int row) const
{
    const std::size_t position = shown_.at(static_cast<std::size_t>(row));
    if (const TrashTexts* known = texts_.object(position)) {
        return *known;
    }
    TrashTexts read;
    try {
        read = trash_->texts(entry(row).item);
    } catch (const DatabaseError&) {
        // A row is painted while nobody can be asked; it says so instead.
        read.name = tr("(cannot be read)");
    }
    texts_.insert(position, new TrashTexts(read));
    return read;
}

QString TrashModel::text(int row, int column) const
{
    switch (column) {
    case What:
        return name(row);
    case Place: {
        TrashTexts known = texts(row);
        for (QString& part : known.place) {
            part = part.isEmpty() ? tr("(missing)") : ShortLine(part, longestName);
        }
        return known.placeText();
    }
    default:
        break;
    }
    const TrashEntry& gone = entry(row);
    if (!gone.deletedAt) {
        return tr("earlier");
    }
    return QLocale().toString(QDateTime::fromSecsSinceEpoch(*gone.deletedAt), QLocale::ShortFormat);
}

QPixmap TrashModel::picture(std::int32_t key) const
{
    if (const QPixmap* known = pictures_.object(key)) {
        return *known;
    }
    loader_.load(key, FindPictureFile(library_.programFolder(), key));
    // The place is kept, so that no text moves when the picture comes.
    return ThumbnailPixmap({}, pictureSize_, pixelRatio_);
}

void TrashModel::pictureCame(std::int32_t key, const QImage& picture)
{
    pictures_.insert(key, new QPixmap(ThumbnailPixmap(picture, pictureSize_, pixelRatio_)));
    // Whichever row it is: only those on show are painted.
    Q_EMIT dataChanged(index(0, What), index(rowCount() - 1, What), {Qt::DecorationRole});
}

QVariant TrashModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return text(index.row(), index.column());
    case Qt::ToolTipRole:
        return entry(index.row()).goneWithAssessment && index.column() == Deleted
                   ? tr("Deleted together with its assessment.")
                   : Wrappable(text(index.row(), index.column()), longestName);
    case Qt::DecorationRole:
        if (index.column() != What) {
            return {};
        }
        return item(index.row()).kind == ItemKind::Question
                   ? picture(item(index.row()).key)
                   : ThumbnailPixmap({}, pictureSize_, pixelRatio_);
    default:
        return {};
    }
}

QVariant TrashModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    switch (section) {
    case What:
        return tr("Deleted");
    case Place:
        return tr("Where it was");
    default:
        return tr("When");
    }
}

} // namespace varnholt
