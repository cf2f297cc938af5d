#include "store/connection.h"
#include "store/library_file.h"
#include "store/picture_files.h"
#include "support/test_library.h"
#include "support/unprivileged.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace varnholt {
namespace {

using test::TestLibrary;

void touch(const QString& path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("x");
}

TEST(PictureFiles, AreFoundWhateverTheCase)
{
    QTemporaryDir folder;
    const QString root = folder.path();
    EXPECT_EQ(FindPictureFile(root, 7), root + QStringLiteral("/Files/7.jpg"));
    QDir(root).mkdir(QStringLiteral("FILES"));
    for (const char* name : {"7.jpg", "8.JPG", "9.Jpg"}) {
        const QString path = root + QStringLiteral("/FILES/") + QLatin1String(name);
        touch(path);
        EXPECT_EQ(FindPictureFile(root, name[0] - '0'), path);
    }
    EXPECT_EQ(NewPictureFile(root, 8), root + QStringLiteral("/FILES/8.jpg"));
    EXPECT_EQ(FindPictureFile(root, 70), root + QStringLiteral("/FILES/70.jpg"));
}

TEST(ProgramFolder, IsTheExecutablesOrACopyOfTheSuppliedLibrary)
{
    TestLibrary own;
    QTemporaryDir base;
    const QString user = base.filePath(QStringLiteral("user/data"));
    const QString empty = base.filePath(QStringLiteral("bin"));
    QDir().mkpath(empty);
    EXPECT_EQ(ChooseProgramFolder({own.folder(), user, {}}), own.folder());

    TestLibrary supplied;
    supplied.addQuestion(1, 1, 1, QStringLiteral("A"));
    EXPECT_EQ(ChooseProgramFolder({empty, user, supplied.folder()}), user);
    Connection connection;
    OpenLibraryDatabase(connection, user);
    EXPECT_TRUE(QFile::exists(FindPictureFile(user, 1)));
    CloseLibraryDatabase(connection);

    // The user's library is never replaced by a later start.
    const QString marker = LibraryPath(user);
    QFile::remove(marker);
    touch(marker);
    EXPECT_EQ(ChooseProgramFolder({empty, user, supplied.folder()}), user);
    EXPECT_EQ(QFileInfo(marker).size(), 1);

    // A folder that cannot be written: the library beside the program is copied.
    TestLibrary locked;
    locked.addQuestion(1, 1, 1, QStringLiteral("A"));
    QTemporaryDir home;
    const QString copy = home.filePath(QStringLiteral("data"));
    QFile(home.path()).setPermissions(QFile::Permissions(0x7777));
    QFile(locked.folder()).setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    {
        const test::Unprivileged unprivileged(locked.folder());
        EXPECT_EQ(ChooseProgramFolder({locked.folder(), copy, supplied.folder()}), copy);
    }
    QFile(locked.folder()).setPermissions(QFile::Permissions(0x7700));
    EXPECT_TRUE(QFile::exists(LibraryPath(copy)));
    EXPECT_TRUE(QFile::exists(FindPictureFile(copy, 1)));

    // A lost library file is reported, not papered over with the supplied one.
    QDir(empty).mkdir(QStringLiteral("Files"));
    EXPECT_EQ(ChooseProgramFolder({empty, user, supplied.folder()}), empty);
    EXPECT_THROW(OpenLibraryDatabase(connection, empty), DatabaseError);
}

} // namespace
} // namespace varnholt
