#pragma once

#include "files/FolderLock.h"

#include <QString>

namespace varnholt {

/// The folder in which one export or import puts its files together, by itself: it is locked
/// against other programs while this object lives. What a user keeps there besides the files
/// of a package is not touched.
class WorkFolder
{
public:
    /// Makes the folder `name` in the program folder when it is missing. A link of that name
    /// is taken away, for what it leads to is not ours to empty. Throws `Error` when another
    /// program is at work in the folder; that it cannot be made shows when something is
    /// written there.
    WorkFolder(const QString& programFolder, const QString& name);

    [[nodiscard]] const QString& path() const { return path_; }
    [[nodiscard]] QString file(const QString& name) const { return path_ + u'/' + name; }

    /// Deletes the files that a package can hold; errors are ignored.
    void empty() const;
    /// As `empty`, but throws `Error` when such a file stays: it would be read as part of the
    /// next package.
    void requireEmpty() const;

private:
    QString path_;
    FolderLock lock_;
};

} // namespace varnholt
