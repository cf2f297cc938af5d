#pragma once

#include <QString>

/// The peers: what exporting and importing costs with nothing but the libraries themselves.
namespace varnholt::bench {

/// libzip packs text files (deflated) and the pictures 1.jpg to `questions`.jpg (stored).
void rawExport(const QString& textFolder, const QString& pictureFolder, int questions,
               const QString& archive);

/// libzip unpacks an archive into `folder`/Files; the SQLite interface then reads the lists
/// and inserts the rows in one transaction into the library in `folder`.
void rawImport(const QString& archive, const QString& folder);

} // namespace varnholt::bench
