#pragma once

#include "store/connection.h"

#include <QString>

namespace varnholt {

/// Where a start of the program finds things.
struct FolderChoice
{
    /// Folder of the executable.
    QString executableFolder;
    /// The user's own data folder, used when the program is installed for everybody.
    QString userDataFolder;
    /// Folder with the library as supplied, or empty when there is none.
    QString suppliedFolder;
};

/// The program folder: the executable's, or the user's data folder where the executable's
/// cannot be written or the program is installed without a library beside it. In the latter
/// case the supplied library is copied there at first start: pictures first and the library
/// file last, so that a copy cut short is taken up again at the next start.
/// Throws `Error` when the copy fails.
[[nodiscard]] QString ChooseProgramFolder(const FolderChoice& choice);

/// "Varnholt.mdb" in the program folder, in whatever case it is spelled; of several spellings
/// this one. The path it should have when there is none.
[[nodiscard]] QString LibraryPath(const QString& programFolder);

/// Opens the library of the program folder. Throws as `Connection::open`.
void OpenLibraryDatabase(Connection& connection, const QString& programFolder,
                         Connection::Access access = Connection::Access::Change);
void CloseLibraryDatabase(Connection& connection);

} // namespace varnholt
