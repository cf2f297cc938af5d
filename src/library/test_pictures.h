#pragma once

#include "library/PastTests.h"

#include <QString>

namespace varnholt {

class Connection;

/// The SHA-256 of a picture file; null when it cannot be read.
[[nodiscard]] QByteArray PictureSha(const QString& path);

/// Where the picture of a past test's question is as it was then: the question's own, or a version
/// of it that was kept when it was replaced (`OldPictureFile`, or in the backups). When it is
/// nowhere any more, the path where its kept version would be: a missing file.
[[nodiscard]] QString FindTestPicture(const QString& programFolder, const TestItem& item);

/// The present answers of those items whose answer is not what it was, by position.
struct ChangedAnswer
{
    std::int32_t position = 0;
    QString answer;
};
/// Throws `DatabaseError`.
[[nodiscard]] std::vector<ChangedAnswer> ChangedAnswers(Connection& connection,
                                                        const std::vector<TestItem>& items);

} // namespace varnholt
