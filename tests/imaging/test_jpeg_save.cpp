#include "imaging/cJpeg.h"
#include "imaging/reference_jpeg.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include <stdlib.h>
#include <sys/resource.h>

namespace varnholt::test {
namespace {

namespace fs = std::filesystem;

class SaveTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "imaging-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
        m_picture = makePicture(Kind::Noise, 120, 90);
        ASSERT_EQ(m_encoder.SampleHDC(&m_picture, 120, 90), cJpeg::Sampled);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    static std::string contents(const fs::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::size_t filesInFolder() const
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
    }

    fs::path m_folder;
    DeviceContext m_picture;
    cJpeg m_encoder;
};

TEST_F(SaveTest, WritesExactlyOneFileWithTheEncodedBytes)
{
    const fs::path name = m_folder / fs::path(u8"Frage \u00fc\u03c0.jpg");
    EXPECT_EQ(m_encoder.SaveFile(name), cJpeg::Written);
    const Bytes expected = encode(m_encoder);
    EXPECT_EQ(contents(name), std::string(expected.begin(), expected.end()));
    EXPECT_EQ(filesInFolder(), 1U);
    EXPECT_EQ(m_encoder.SaveFile(m_folder / "again.jpg"), cJpeg::Written);
}

TEST_F(SaveTest, NeverReplacesWhatHasTheName)
{
    const fs::path file = m_folder / "taken.jpg";
    std::ofstream(file) << "precious";
    fs::create_symlink(m_folder / "nowhere", m_folder / "link.jpg");
    fs::create_directory(m_folder / "folder.jpg");
    for (const char* name : {"taken.jpg", "link.jpg", "folder.jpg"})
        EXPECT_EQ(m_encoder.SaveFile(m_folder / name), cJpeg::FileExists) << name;
    EXPECT_EQ(contents(file), "precious");
    EXPECT_EQ(filesInFolder(), 3U);
}

TEST_F(SaveTest, ReportsWhatCannotBeWritten)
{
    EXPECT_EQ(m_encoder.SaveFile({}), cJpeg::EmptyName);
    EXPECT_EQ(m_encoder.SaveFile(m_folder / "missing" / "a.jpg"), cJpeg::CannotCreate);
    EXPECT_EQ(cJpeg().SaveFile(m_folder / "a.jpg"), cJpeg::NothingSampled);
    EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(SaveTest, AFullDiskLeavesNothing)
{
    // A limit on the size of files fails writes the way a full disk does.
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    for (const rlim_t limit : {rlim_t{0}, rlim_t{1}, rlim_t{5000}}) {
        const rlimit small{limit, old.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        const auto result = m_encoder.SaveFile(m_folder / "a.jpg");
        setrlimit(RLIMIT_FSIZE, &old);
        EXPECT_EQ(result, cJpeg::NotWritten) << limit;
        EXPECT_EQ(filesInFolder(), 0U);
    }
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(m_encoder.SaveFile(m_folder / "a.jpg"), cJpeg::Written);
}

std::vector<int> markers(const std::vector<Segment>& all)
{
    std::vector<int> result;
    for (const Segment& segment : all)
        result.push_back(segment.marker);
    return result;
}

TEST_F(SaveTest, SegmentsStandInTheirOrder)
{
    m_encoder.Comment("A note");
    const auto colour = segments(encode(m_encoder));
    EXPECT_EQ(markers(colour),
              (std::vector<int>{0xD8, 0xE0, 0xFE, 0xFE, 0xDB, 0xDB, 0xC0, 0xC4, 0xC4, 0xDA, 0xD9}));
    EXPECT_EQ(colour[1].content, std::string("JFIF\0\1\1\0\0\1\0\1\0\0", 14));
    EXPECT_EQ(colour[2].content, "A note");
    EXPECT_EQ(colour[3].content.substr(0, 20), "JPEG Encoder Class\r\n");
    EXPECT_EQ(std::count(colour[3].content.begin(), colour[3].content.end(), '\n'), 2);

    cJpeg grey;
    grey.SetSamplingFrequencies(2, 2, 0, 0, 0, 0);
    ASSERT_EQ(grey.SampleHDC(&m_picture, 120, 90), cJpeg::Sampled);
    const auto segmentsOfGrey = segments(encode(grey));
    EXPECT_EQ(markers(segmentsOfGrey),
              (std::vector<int>{0xD8, 0xE0, 0xFE, 0xDB, 0xC0, 0xC4, 0xDA, 0xD9}));
    EXPECT_EQ(segmentsOfGrey[4].content.substr(5), std::string("\1\1\x11\0", 4)) << "sampled 1x1";
}

TEST_F(SaveTest, CommentsOfAnyAllowedLengthAreKeptWhole)
{
    for (const std::size_t length : {1U, 65533U, 65534U, 65535U}) {
        std::string text(length, 'x');
        if (length > 65533)
            text.replace(65532, 2, "\u00e9"); // across the end of a segment
        m_encoder.Comment(text);
        const Bytes file = encode(m_encoder);
        std::string found;
        for (const Segment& segment : segments(file)) {
            if (segment.marker == 0xFE && segment.content.find("Encoder") == std::string::npos) {
                EXPECT_NE(segment.content[0] & 0xC0, 0x80) << "a torn character";
                found += segment.content;
            }
        }
        EXPECT_EQ(found, text);
        EXPECT_EQ(decode(file).width, 120);
    }
}

TEST_F(SaveTest, WrongUseRaisesTheNumberedErrors)
{
    m_encoder.Comment("kept");
    const auto expectError = [](auto&& work, const char* text) {
        try {
            work();
            ADD_FAILURE() << "no error";
        } catch (const cJpegError& error) {
            EXPECT_EQ(error.number(), 1);
            EXPECT_STREQ(error.what(), text);
        }
    };
    expectError([&] { m_encoder.Comment(std::string(65536, 'x')); }, "Illegal Comment Length");
    EXPECT_EQ(m_encoder.Comment(), "kept");
    const Bytes before = encode(m_encoder);
    for (const auto& f : {std::array{0, 1, 1, 1, 1, 1}, std::array{1, 5, 1, 1, 1, 1},
                          std::array{1, 1, 0, 1, 1, 1}, std::array{1, 1, 1, 1, 1, -1},
                          std::array{5, 1, 0, 0, 0, 0}, std::array{2, 2, 0, 0, 0, 1}})
        expectError([&] { m_encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]); },
                    "Invalid Sampling Value");
    ASSERT_EQ(m_encoder.SampleHDC(&m_picture, 120, 90), cJpeg::Sampled);
    EXPECT_EQ(encode(m_encoder), before) << "failed settings must change nothing";
}

} // namespace
} // namespace varnholt::test
