#include "manage/PictureStrip.h"

#include "pictures/ThumbnailLoader.h"
#include "pictures/picture_files.h"
#include "toolkit/thumbnail_pixmap.h"

#include <QAbstractListModel>
#include <QCache>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <vector>

namespace varnholt {

namespace {

/// As many as a user scrolls to and fro between.
constexpr int keptPictures = 400;

} // namespace

class PictureStripModel : public QAbstractListModel
{
public:
    PictureStripModel(QString programFolder, QSize size, qreal pixelRatio, QObject* parent)
        : QAbstractListModel(parent)
        , programFolder_(std::move(programFolder))
        , size_(size)
        , pixelRatio_(pixelRatio)
        , pictures_(keptPictures)
        , loader_(static_cast<int>(size.width() * pixelRatio))
    {
        connect(&loader_, &ThumbnailLoader::came, this,
                [this](std::int32_t key, const QImage& picture) {
                    pictures_.insert(key,
                                     new QPixmap(ThumbnailPixmap(picture, size_, pixelRatio_)));
                    // Whichever it is: only those in view are painted.
                    Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::DecorationRole});
                });
    }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(keys_.size());
    }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override
    {
        const std::int32_t key = keys_.at(static_cast<std::size_t>(index.row()));
        switch (role) {
        case Qt::DecorationRole:
            if (const QPixmap* known = pictures_.object(key)) {
                return *known;
            }
            loader_.load(key, FindPictureFile(programFolder_, key));
            return ThumbnailPixmap({}, size_, pixelRatio_);
        case Qt::AccessibleTextRole:
        case Qt::ToolTipRole:
            return PictureStrip::tr("Question %1").arg(index.row() + 1);
        default:
            return {};
        }
    }

    void setKeys(std::vector<std::int32_t> keys)
    {
        beginResetModel();
        keys_ = std::move(keys);
        endResetModel();
    }

    void forgetPictures() { pictures_.clear(); }

private:
    QString programFolder_;
    QSize size_;
    qreal pixelRatio_;
    std::vector<std::int32_t> keys_;
    QCache<std::int32_t, QPixmap> pictures_;
    mutable ThumbnailLoader loader_;
};

PictureStrip::PictureStrip(QString programFolder, QWidget* parent)
    : QListView(parent)
{
    const int line = fontMetrics().height();
    const QSize size(line * 4, line * 5 / 2);
    model_ = new PictureStripModel(std::move(programFolder), size, devicePixelRatioF(), this);
    setModel(model_);
    setFlow(LeftToRight);
    setWrapping(false);
    setUniformItemSizes(true);
    setIconSize(size);
    setSpacing(1);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    // The pictures are white mostly.
    viewport()->setBackgroundRole(QPalette::Window);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Its place is kept, so that the picture above does not change its size.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFixedHeight(size.height() + line / 2 + 2 * frameWidth() +
                   horizontalScrollBar()->sizeHint().height());
}

void PictureStrip::setQuestions(const List1<QuestionRecord>& questions)
{
    const QScopedValueRollback quiet(quiet_, true);
    std::vector<std::int32_t> keys;
    keys.reserve(static_cast<std::size_t>(questions.upperBound()));
    for (const QuestionRecord& question : questions) {
        keys.push_back(question.SOLIndex);
    }
    model_->setKeys(std::move(keys));
}

void PictureStrip::forgetPictures()
{
    model_->forgetPictures();
}

void PictureStrip::setPosition(int position)
{
    const QScopedValueRollback quiet(quiet_, true);
    setCurrentIndex(model_->index(position - 1));
}

void PictureStrip::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QListView::currentChanged(current, previous);
    if (!quiet_ && current.isValid()) {
        Q_EMIT chosen(current.row() + 1);
    }
}

void PictureStrip::resizeEvent(QResizeEvent* event)
{
    QListView::resizeEvent(event);
    scrollTo(currentIndex());
}

} // namespace varnholt
