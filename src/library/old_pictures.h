#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace varnholt {

// Pictures that others have replaced. They lie in "Files/Old", where nobody looks for a question's
// picture, as "<key>-<mark>.jpg". What touches files throws `Error`.

/// The mark in a name: the first digits of the SHA-256 of a picture.
[[nodiscard]] QString MarkOfSha(const QByteArray& sha);

/// Where the picture of a question with that mark is kept when it is replaced.
[[nodiscard]] QString OldPictureFile(const QString& programFolder, std::int32_t key,
                                     const QString& mark);

/// What tells a question's pictures apart: the mark of the present one.
[[nodiscard]] QString PictureMark(const QString& programFolder, std::int32_t key);

/// Where a new picture may be written before it gets its place. There is no file yet.
[[nodiscard]] QString NextPictureFile(const QString& programFolder, std::int32_t key);

/// Puts the picture from `NextPictureFile` in the place of the present one, which is kept.
void PutNextPicture(const QString& programFolder, std::int32_t key);

/// Puts the old picture with that mark in the place of the present one, which is kept. At every
/// moment there is one or the other.
void PutOldPicture(const QString& programFolder, std::int32_t key, const QString& mark);

} // namespace varnholt
