#pragma once

#include <QSize>
#include <QString>

namespace varnholt {

/// A widget that is a picture. Assistive programs are told so, with what it shows, once
/// `announcePictures` was called (any number of times).
class DescribedPicture
{
public:
    virtual ~DescribedPicture() = default;

    /// Whole sentences: what the picture belongs to, and how it stands with it.
    [[nodiscard]] virtual QString pictureDescription() const = 0;
    /// In pixels of the picture; empty when there is none.
    [[nodiscard]] virtual QSize pictureSize() const = 0;
};

void announcePictures();

/// The sentence on a picture's size, or that there is none.
[[nodiscard]] QString pictureSizeSentence(QSize size);

} // namespace varnholt
