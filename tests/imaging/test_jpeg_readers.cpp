// Every decoder of the machine reads what the encoder writes: libjpeg-turbo's djpeg, Qt,
// ImageMagick and FFmpeg, without a word of warning. That every coefficient is right the tests of
// the encoder show; here one file of each sampling, size, kind of picture and quality is enough.

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

struct Sample
{
    std::array<int, 6> factors;
    int width;
    int height;
    Kind kind;
    int quality;
    double limit; ///< Of the mean difference from the source.
};

constexpr Sample samples[] = {{{1, 1, 0, 0, 0, 0}, 1, 1, Kind::Flat, 75, 4},
                              {{1, 1, 0, 0, 0, 0}, 160, 121, Kind::Smooth, 10, 14},
                              {{1, 1, 1, 1, 1, 1}, 33, 47, Kind::Noise, 100, 1.6},
                              {{1, 1, 1, 1, 1, 1}, 7, 5, Kind::Smooth, 75, 4},
                              {{2, 1, 1, 1, 1, 1}, 160, 121, Kind::Noise, 75, 62},
                              {{2, 1, 1, 1, 1, 1}, 33, 47, Kind::Flat, 10, 14},
                              {{1, 2, 1, 1, 1, 1}, 16, 16, Kind::Smooth, 100, 1.6},
                              {{1, 2, 1, 1, 1, 1}, 160, 121, Kind::Noise, 10, 75},
                              {{4, 1, 1, 1, 1, 1}, 33, 47, Kind::Smooth, 75, 4},
                              {{4, 1, 1, 1, 1, 1}, 7, 5, Kind::Flat, 100, 1.6},
                              {{2, 2, 1, 1, 1, 1}, 160, 121, Kind::Smooth, 100, 1.6},
                              {{2, 2, 1, 1, 1, 1}, 1, 1, Kind::Noise, 10, 75}};

void judge(const Sample& sample, const DeviceContext& picture, const QImage& read)
{
    ASSERT_EQ(read.size(), QSize(sample.width, sample.height));
    const bool grey = sample.factors[2] == 0;
    double sum = 0;
    for (int i = 0; i < sample.width * sample.height; ++i) {
        const Bgr c = colourAt(picture.view(), i % sample.width, i / sample.width);
        const QRgb found = read.pixel(i % sample.width, i / sample.width);
        const double luma = 0.299 * c.red + 0.587 * c.green + 0.114 * c.blue;
        sum += std::abs(qRed(found) - (grey ? luma : c.red)) +
               std::abs(qGreen(found) - (grey ? luma : c.green)) +
               std::abs(qBlue(found) - (grey ? luma : c.blue));
    }
    EXPECT_LE(sum / (3.0 * sample.width * sample.height), sample.limit);
}

TEST(Readers, ReadEveryFileWithoutAWarning)
{
    const QTemporaryDir folder;
    std::vector<DeviceContext> pictures;
    for (const Sample& s : samples) {
        cJpeg encoder;
        const auto& f = s.factors;
        encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]);
        encoder.Quality(s.quality);
        encoder.Comment("A comment");
        pictures.push_back(makePicture(s.kind, s.width, s.height, 2));
        ASSERT_EQ(encoder.SampleHDC(&pictures.back(), s.width, s.height), cJpeg::Sampled);
        const QString name = QStringLiteral("%1.jpg").arg(pictures.size());
        ASSERT_EQ(encoder.SaveFile(folder.filePath(name).toStdString()), cJpeg::Written);
    }
    // Each makes a .ppm of each .jpg, for Qt to read; Qt itself gets the files.
    for (const char* command :
         {"ln -s $f.jpg $f.ppm", "djpeg -strict -outfile $f.ppm $f.jpg",
          "convert -regard-warnings $f.jpg -depth 8 $f.ppm",
          "ffmpeg -nostdin -v repeat+warning -i $f.jpg -pix_fmt rgb24 -update 1 $f.ppm"}) {
        QProcess shell;
        shell.setWorkingDirectory(folder.path());
        shell.start(QStringLiteral("bash"),
                    {QStringLiteral("-c"), QStringLiteral("for f in {1..%1}; do %2 || exit; done")
                                               .arg(pictures.size())
                                               .arg(QLatin1String(command))});
        ASSERT_TRUE(shell.waitForFinished(120000));
        // FFmpeg says the one of any file of a few hundred bytes, libjpeg-turbo's own included,
        // the other of its own conversion to the format written.
        for (const QByteArray& line : shell.readAllStandardError().split('\n'))
            EXPECT_TRUE(line.isEmpty() || line.endsWith("EOI missing, emulating") ||
                        line.contains("deprecated pixel format used"))
                << line.constData();
        ASSERT_EQ(shell.exitCode(), 0) << command;
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            SCOPED_TRACE(testing::Message() << command << ", file " << i + 1);
            const QString file = folder.filePath(QStringLiteral("%1.ppm").arg(i + 1));
            judge(samples[i], pictures[i], QImage(file));
            QFile::remove(file);
        }
    }
}

} // namespace
} // namespace varnholt::test
