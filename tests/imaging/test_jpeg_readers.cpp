// Every decoder of the machine reads what the encoder writes: libjpeg-turbo's djpeg, Qt,
// ImageMagick and FFmpeg, without a word of warning.

#include "imaging/cJpeg.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <cmath>

namespace varnholt::test {
namespace {

using Factors = std::array<int, 6>;

struct Sample
{
    QString file;
    DeviceContext picture;
    bool grey;
    double limit; // of the mean difference from the source
};

struct Program
{
    const char* name;
    const char* command; // makes a .ppm of each .jpg, for Qt to read; Qt itself gets the files
};

/// Files of every kind of picture, sampling and quality in a folder of their own.
struct Samples
{
    QTemporaryDir folder;
    std::vector<Sample> all;

    Samples()
    {
        constexpr Factors kSamplings[] = {{1, 1, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 1},
                                          {2, 1, 1, 1, 1, 1}, {1, 2, 1, 1, 1, 1},
                                          {4, 1, 1, 1, 1, 1}, {2, 2, 1, 1, 1, 1}};
        constexpr std::pair<int, int> kSizes[] = {{1, 1}, {7, 5}, {16, 16}, {33, 47}, {160, 121}};
        for (const Factors& factors : kSamplings)
            for (const auto& [width, height] : kSizes)
                for (const Kind kind : {Kind::Noise, Kind::Flat, Kind::Smooth})
                    for (const int quality : {10, 75, 100})
                        add(factors, makePicture(kind, width, height, 2), kind, quality);
    }

    void add(const Factors& f, DeviceContext picture, Kind kind, int quality)
    {
        cJpeg encoder;
        encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]);
        encoder.Quality(quality);
        encoder.Comment("A comment");
        EXPECT_EQ(encoder.SampleHDC(&picture, picture.Width(), picture.Height()), cJpeg::Sampled);
        const QString name = QStringLiteral("%1.jpg").arg(all.size());
        EXPECT_EQ(encoder.SaveFile(folder.filePath(name).toStdString()), cJpeg::Written);
        // Flat and smooth pictures come back nearly as they were; noise does where nothing
        // is thrown away.
        double limit = quality == 100 ? 1.6 : quality == 75 ? 4 : 14;
        if (kind == Kind::Noise && !(quality == 100 && f == Factors{1, 1, 1, 1, 1, 1}))
            limit = quality == 10 ? 75 : 62;
        all.push_back({name, std::move(picture), f[2] == 0, limit});
    }
};

void judge(const Sample& sample, const QImage& read)
{
    const BitmapView source = sample.picture.view();
    ASSERT_EQ(read.size(), QSize(source.width, source.height)) << qPrintable(sample.file);
    double sum = 0;
    for (int i = 0; i < source.width * source.height; ++i) {
        const Bgr c = colourAt(source, i % source.width, i / source.width);
        const QRgb found = read.pixel(i % source.width, i / source.width);
        const double luma = 0.299 * c.red + 0.587 * c.green + 0.114 * c.blue;
        sum += std::abs(qRed(found) - (sample.grey ? luma : c.red)) +
               std::abs(qGreen(found) - (sample.grey ? luma : c.green)) +
               std::abs(qBlue(found) - (sample.grey ? luma : c.blue));
    }
    EXPECT_LE(sum / (3.0 * source.width * source.height), sample.limit) << qPrintable(sample.file);
}

class ReadersTest : public testing::TestWithParam<Program>
{};

INSTANTIATE_TEST_SUITE_P(
    Programs, ReadersTest,
    testing::Values(
        Program{"Qt", "for f in *.jpg; do ln -s $f $f.ppm; done"},
        Program{"Djpeg", "for f in *.jpg; do djpeg -strict -outfile $f.ppm $f || exit; done"},
        Program{"ImageMagick", "convert -regard-warnings '*.jpg' -set filename:name %f -depth 8 "
                               "+adjoin '%[filename:name].ppm'"},
        Program{"Ffmpeg", "for f in *.jpg; do inputs=\"$inputs -i $f\"; outputs=\"$outputs -map "
                          "$((i++)):v -pix_fmt rgb24 -update 1 $f.ppm\"; done; "
                          "ffmpeg -nostdin -v repeat+warning -threads 1 $inputs $outputs"}),
    [](const auto& program) { return std::string(program.param.name); });

TEST_P(ReadersTest, ReadsEveryFileWithoutAWarning)
{
    static const Samples samples;
    ASSERT_EQ(samples.all.size(), 270U);
    QProcess shell;
    shell.setWorkingDirectory(samples.folder.path());
    shell.start(QStringLiteral("bash"),
                {QStringLiteral("-c"), QString::fromLatin1(GetParam().command)});
    ASSERT_TRUE(shell.waitForFinished(120000));
    // FFmpeg says the one of any file of a few hundred bytes, libjpeg-turbo's own included,
    // the other of its own conversion to the format written.
    for (const QByteArray& line : shell.readAllStandardError().split('\n'))
        EXPECT_TRUE(line.isEmpty() || line.endsWith("EOI missing, emulating") ||
                    line.contains("deprecated pixel format used"))
            << line.constData();
    ASSERT_EQ(shell.exitCode(), 0);
    for (const Sample& sample : samples.all) {
        const QString file = samples.folder.filePath(sample.file + QStringLiteral(".ppm"));
        judge(sample, QImage(file));
        QFile::remove(file);
    }
}

} // namespace
} // namespace varnholt::test
