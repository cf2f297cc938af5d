#pragma once

class QByteArray;
class QFileDevice;
class QString;

namespace varnholt {

/// Writes all of it to an unbuffered file. A disk that becomes full takes a part, and says why
/// only when it is given the rest: after false `errorString` of the file is that reason.
[[nodiscard]] bool WriteAll(QFileDevice& file, const QByteArray& bytes);

/// Puts the bytes under that name and on the disk, or leaves what is there as it is. Throws
/// `Error`.
void SaveFile(const QString& path, const QByteArray& bytes);

} // namespace varnholt
