#include "files/NewFile.h"
#include "imaging/jpeg_markers.h"
#include "imaging/reference_jpeg.h"
#include "imaging/test_pictures.h"
#include "support/file_size_limit.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace varnholt::test {
namespace {

namespace fs = std::filesystem;

class SaveTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_folder =
            fs::temp_directory_path() / ("imaging-" + std::to_string(std::random_device()()));
        ASSERT_TRUE(fs::create_directory(m_folder));
        ASSERT_EQ(m_encoder.SampleHDC(&m_picture, 120, 90), cJpeg::Sampled);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    static std::string contents(const fs::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::ptrdiff_t files() const { return std::distance(fs::directory_iterator(m_folder), {}); }

    fs::path m_folder;
    const DeviceContext m_picture = makePicture(Kind::Noise, 120, 90);
    cJpeg m_encoder;
};

TEST_F(SaveTest, WritesExactlyOneFileAndNeverReplacesOne)
{
    const fs::path name = m_folder / fs::path(u8"Frage \u00fc\u03c0.jpg");
    EXPECT_EQ(m_encoder.SaveFile(name), cJpeg::Written);
    const Bytes expected = encode(m_encoder);
    EXPECT_EQ(contents(name), std::string(expected.begin(), expected.end()));
    EXPECT_EQ(files(), 1);

    {
        NewFile file(m_folder / "taken.jpg");
        ASSERT_TRUE(file.isOpen());
        std::ofstream(m_folder / "taken.jpg") << "precious";
        EXPECT_EQ(file.finish(), NewFile::Outcome::NameTaken) << "in the meantime";
    }
    std::error_code noLinks; // Windows makes them for administrators only
    fs::create_symlink(m_folder / "nowhere", m_folder / "link.jpg", noLinks);
    if (noLinks) {
        std::ofstream(m_folder / "link.jpg") << "a file instead";
    }
    fs::create_directory(m_folder / "folder.jpg");
    for (const char* taken : {"taken.jpg", "link.jpg", "folder.jpg"})
        EXPECT_EQ(m_encoder.SaveFile(m_folder / taken), cJpeg::FileExists) << taken;
    EXPECT_EQ(contents(m_folder / "taken.jpg"), "precious");
    EXPECT_EQ(files(), 4);
}

TEST_F(SaveTest, ReportsWhatCannotBeWrittenAndLeavesNothing)
{
    EXPECT_EQ(m_encoder.SaveFile({}), cJpeg::EmptyName);
    EXPECT_EQ(m_encoder.SaveFile(m_folder / "missing" / "a.jpg"), cJpeg::CannotCreate);
    EXPECT_EQ(cJpeg().SaveFile(m_folder / "a.jpg"), cJpeg::NothingSampled);

    // A limit on the size of files fails writes the way a full disk does.
    VARNHOLT_SKIP_ON_WINDOWS("the disk cannot be made to look full");
    for (const unsigned limit : {0U, 1U, 5000U}) {
        auto result = cJpeg::Written;
        {
            const FileSizeLimit full(limit);
            result = m_encoder.SaveFile(m_folder / "a.jpg");
        }
        EXPECT_EQ(result, cJpeg::NotWritten) << limit;
        EXPECT_EQ(files(), 0);
    }
    EXPECT_EQ(m_encoder.SaveFile(m_folder / "a.jpg"), cJpeg::Written);
}

TEST_F(SaveTest, SegmentsStandInTheirOrder)
{
    const auto markers = [](const std::vector<Segment>& segments) {
        std::string found;
        for (const Segment& segment : segments)
            found += static_cast<char>(segment.marker);
        return found;
    };
    m_encoder.Comment("A note");
    const auto colour = segments(encode(m_encoder));
    EXPECT_EQ(markers(colour), "\xD8\xE0\xFE\xFE\xDB\xDB\xC0\xC4\xC4\xDA\xD9");
    EXPECT_EQ(colour[1].content, std::string("JFIF\0\1\1\0\0\1\0\1\0\0", 14));
    EXPECT_EQ(colour[2].content, "A note");
    EXPECT_EQ(colour[3].content.substr(0, 20), "JPEG Encoder Class\r\n");
    EXPECT_EQ(std::count(colour[3].content.begin(), colour[3].content.end(), '\n'), 2);

    m_encoder.Comment({});
    m_encoder.SetSamplingFrequencies(2, 2, 0, 0, 0, 0);
    ASSERT_EQ(m_encoder.SampleHDC(&m_picture, 120, 90), cJpeg::Sampled);
    const auto grey = segments(encode(m_encoder));
    EXPECT_EQ(markers(grey), "\xD8\xE0\xFE\xDB\xC0\xC4\xDA\xD9");
    EXPECT_EQ(grey[4].content.substr(5), std::string("\1\1\x11\0", 4)) << "sampled 1x1";
}

TEST_F(SaveTest, CommentsOfAnyAllowedLengthAreKeptWhole)
{
    for (const std::size_t length : {1U, 65533U, 65534U, 65535U}) {
        std::string text(length, 'x');
        if (length > 65533)
            text.replace(65532, 2, "\u00e9"); // across the end of a segment
        m_encoder.Comment(text);
        std::string found;
        for (const Segment& segment : segments(encode(m_encoder))) {
            if (segment.marker == 0xFE && segment.content.find("Encoder") == std::string::npos) {
                EXPECT_NE(segment.content[0] & 0xC0, 0x80) << "a torn character";
                found += segment.content;
            }
        }
        EXPECT_EQ(found, text);
        check(encode(m_encoder), m_picture, {120, 90});
    }
}

TEST_F(SaveTest, WrongUseRaisesTheNumberedErrors)
{
    const auto expectError = [](auto&& work, const char* text) {
        try {
            work();
            ADD_FAILURE() << "no error";
        } catch (const cJpegError& error) {
            EXPECT_EQ(error.number(), 1);
            EXPECT_STREQ(error.what(), text);
        }
    };
    m_encoder.Comment("kept");
    const Bytes before = encode(m_encoder);
    expectError([&] { m_encoder.Comment(std::string(65536, 'x')); }, "Illegal Comment Length");
    for (const auto& f : {std::array{0, 1, 1, 1, 1, 1}, std::array{1, 5, 1, 1, 1, 1},
                          std::array{1, 1, 0, 1, 1, 1}, std::array{1, 1, 1, 1, 1, -1},
                          std::array{5, 1, 0, 0, 0, 0}, std::array{2, 2, 0, 0, 0, 1}})
        expectError([&] { m_encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]); },
                    "Invalid Sampling Value");
    ASSERT_EQ(m_encoder.SampleHDC(&m_picture, 120, 90), cJpeg::Sampled);
    EXPECT_EQ(encode(m_encoder), before) << "failed settings must change nothing";

    QuantTable table = baseQuantTable(0);
    table[5] = 0;
    expectError([&] { dctScale(table); }, "Bad Quantization Table");
    table[5] = 256;
    const jpeg::ByteSink sink = [](auto) { return true; };
    jpeg::ByteWriter out(sink);
    expectError([&] { jpeg::writeQuantTable(out, 0, table); },
                "Illegal precission in Quantization Table");
    // A symbol missing, one twice, too many codes of a length, the code of all ones.
    const HuffmanList noCodes[] = {
        {{0, 0, 2}, {7}}, {{0, 0, 2}, {7, 7}}, {{0, 3}, {0, 1, 2}}, {{0, 2}, {0, 1}}};
    for (const HuffmanList& list : noCodes)
        expectError([&] { huffmanCodes(list); }, "Bad Huffman Table");
}

} // namespace
} // namespace varnholt::test
