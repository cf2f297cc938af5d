// What is done with files in a way of its own on Windows.

#include "files/FolderLock.h"
#include "files/LockFile.h"
#include "files/NewFile.h"
#include "files/file_system.h"
#include "files/placing.h"
#include "files/sync.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <thread>

namespace varnholt {
namespace {

namespace fs = std::filesystem;

class FilesOnWindows : public testing::Test
{
protected:
    FilesOnWindows()
        : folder_(fs::temp_directory_path() /
                  (L"\u00D6\u0416\u6D4B " + std::to_wstring(std::random_device()())))
    {
        fs::create_directories(folder_);
    }
    ~FilesOnWindows() override { fs::remove_all(folder_); }

    fs::path write(const char* name, const std::string& text) const
    {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return folder_ / name;
    }
    static std::string read(const fs::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    [[nodiscard]] auto files() const
    {
        return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
    }

    fs::path folder_;
};

TEST_F(FilesOnWindows, ANewFileAppearsWholeAndReplacesNone)
{
    const std::string text("\n\r\n\x1A\n", 5);
    for (const auto expected : {NewFile::Outcome::Done, NewFile::Outcome::NameTaken}) {
        NewFile file(folder_ / "new");
        ASSERT_TRUE(file.isOpen());
        EXPECT_TRUE(file.write({reinterpret_cast<const std::uint8_t*>(text.data()),
                                expected == NewFile::Outcome::Done ? text.size() : 1}));
        EXPECT_EQ(file.finish(), expected);
        EXPECT_EQ(read(folder_ / "new"), text);
    }
    EXPECT_EQ(files(), 1);
}

TEST_F(FilesOnWindows, WhoReadsAFileForAMomentIsWaitedFor)
{
    const auto placeOver = [&](const fs::path& open, bool letsGo, auto place) {
        write("from", "after");
        write("to", "before");
        HANDLE reader = CreateFileW(open.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(reader, INVALID_HANDLE_VALUE);
        std::thread leaving([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(letsGo ? 150 : 2000));
            CloseHandle(reader);
        });
        const std::error_code error = place(folder_ / "from", folder_ / "to");
        EXPECT_EQ(!error, letsGo) << error.message();
        EXPECT_EQ(read(folder_ / "to"), letsGo ? "after" : "before");
        leaving.join();
        EXPECT_FALSE(fs::exists(folder_ / "to.part"));
    };
    placeOver(folder_ / "to", true, RenameFile);
    placeOver(folder_ / "from", true, RenameFile);
    placeOver(folder_ / "to", false, RenameFile);
    placeOver(folder_ / "to", true, TakeFileTo);
    placeOver(folder_ / "to", true, [](const fs::path& from, const fs::path& to) {
        return PlaceFile(from, to, Placing::Copy);
    });
    EXPECT_EQ(RenameFile(folder_ / "none", folder_ / "to"), std::errc::no_such_file_or_directory);
}

TEST_F(FilesOnWindows, LocksAreOnesAndLeaveNothing)
{
    using Outcome = LockFile::Outcome;
    {
        std::optional<LockFile> first(std::in_place);
        LockFile second;
        EXPECT_EQ(first->take(folder_ / "lock", folder_), Outcome::Taken);
        first->setText("a longer text");
        first->setText("text");
        EXPECT_EQ(read(folder_ / "lock"), "text") << "others read it";
        std::ofstream(folder_ / "lock", std::ios::app) << " more";
        EXPECT_EQ(read(folder_ / "lock"), "text more") << "and add to it";
        EXPECT_EQ(second.take(folder_ / "lock", folder_), Outcome::HeldByAnother);
        first.reset();
        EXPECT_EQ(second.take(folder_ / "lock", folder_), Outcome::Taken);
    }
    EXPECT_EQ(LockFile().take(folder_ / "none" / "lock", folder_), Outcome::NotPossible);
    EXPECT_EQ(files(), 0);

    std::optional<FolderLock> first(folder_);
    EXPECT_FALSE(first->isHeldByAnother());
    EXPECT_TRUE(FolderLock(folder_).isHeldByAnother());
    EXPECT_FALSE(TakeFileTo(write("from", "text"), folder_ / "to")) << "it is open to all";
    EXPECT_FALSE(PlaceFile(folder_ / "to", folder_ / "from", Placing::Copy));
    EXPECT_EQ(files(), 2);
    first.reset();
    EXPECT_FALSE(FolderLock(folder_).isHeldByAnother());
    EXPECT_FALSE(fs::exists(folder_.wstring() + L".lock"));
}

TEST_F(FilesOnWindows, WhatIsPutOnTheDiskHasToBeThere)
{
    const fs::path all[]{write("a", "1"), folder_ / "b"};
    EXPECT_FALSE(SyncFiles({all, 1}));
    EXPECT_EQ(SyncFiles(all), std::errc::no_such_file_or_directory);
    EXPECT_FALSE(IsOnNetwork(folder_));
    EXPECT_TRUE(IsOnNetwork(L"\\\\server\\share\\library"));
}

} // namespace
} // namespace varnholt
