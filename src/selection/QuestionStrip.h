#pragma once

#include "pictures/ThumbnailLoader.h"

#include <QHash>
#include <QListWidget>
#include <QPixmap>

#include <cstdint>
#include <vector>

namespace varnholt {

/// A question in a strip.
struct StripEntry
{
    /// Tells it from the others.
    std::int32_t key = 0;
    /// Of its picture.
    QString path;
    /// Under its picture: its answer, say. Its number comes before it.
    QString text;
    /// Instead of the picture's subject for those who cannot see it.
    QString subject;
};

/// Questions as small pictures in their order, numbered. Where they may be moved they are dragged,
/// or moved with Ctrl and the arrow keys. Pictures are read as they come into view.
class QuestionStrip : public QListWidget
{
    Q_OBJECT

public:
    explicit QuestionStrip(QWidget* parent = nullptr);

    /// Replaces all entries; the first is current then, or that with `currentKey`.
    void setEntries(std::vector<StripEntry> entries, std::int32_t currentKey = 0);
    void setMovable(bool movable);
    /// The keys in the order on show.
    [[nodiscard]] std::vector<std::int32_t> keys() const;
    /// 0 for none.
    [[nodiscard]] std::int32_t currentKey() const;
    /// In their order.
    [[nodiscard]] std::vector<std::int32_t> selectedKeys() const;
    /// Selects these besides the current one.
    void selectKeys(const std::vector<std::int32_t>& keys);

Q_SIGNALS:
    /// She has moved an entry.
    void reordered();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    class Item;

    [[nodiscard]] QPixmap picture(const StripEntry& entry) const;
    void moveCurrent(int by);
    void number();

    mutable ThumbnailLoader loader_;
    mutable QHash<std::int32_t, QPixmap> pictures_;
    bool movable_ = false;
};

} // namespace varnholt
