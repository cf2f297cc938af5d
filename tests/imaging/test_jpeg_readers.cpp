// Every decoder of the machine reads what the encoder writes: libjpeg-turbo's djpeg, Qt,
// ImageMagick and FFmpeg, without a word of warning. That every coefficient is right the tests of
// the encoder show; here one file of each sampling is enough.

#include "imaging/cJpeg.h"
#include "imaging/test_pictures.h"
#include "support/file_size_limit.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <cmath>

namespace varnholt::test {

using namespace Qt::StringLiterals;
namespace {

TEST(Readers, ReadEveryFileWithoutAWarning)
{
    VARNHOLT_SKIP_ON_WINDOWS("there is no shell to run the readers from");
    struct Sample
    {
        std::array<int, 6> factors;
        int width;
        int height;
        int quality;
        double limit; ///< Of the mean difference from the source.
    };
    constexpr Sample samples[] = {
        {{1, 1, 0, 0, 0, 0}, 160, 121, 10, 14}, {{1, 1, 1, 1, 1, 1}, 7, 5, 75, 4},
        {{2, 1, 1, 1, 1, 1}, 160, 121, 75, 4},  {{1, 2, 1, 1, 1, 1}, 16, 16, 100, 1.6},
        {{4, 1, 1, 1, 1, 1}, 33, 47, 75, 4},    {{2, 2, 1, 1, 1, 1}, 160, 121, 100, 1.6},
        {{2, 2, 1, 1, 1, 1}, 1, 1, 10, 14}};
    const QTemporaryDir folder;
    const auto file = [&](std::size_t i, const char* ending) {
        return folder.filePath(QString::number(i) + QLatin1String(ending));
    };
    const DeviceContext picture = makePicture(Kind::Smooth, 160, 121);
    for (std::size_t i = 0; i < std::size(samples); ++i) {
        cJpeg encoder;
        const auto& f = samples[i].factors;
        encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]);
        encoder.Quality(samples[i].quality);
        encoder.Comment("A comment");
        ASSERT_EQ(encoder.SampleHDC(&picture, samples[i].width, samples[i].height), cJpeg::Sampled);
        ASSERT_EQ(encoder.SaveFile(file(i, ".jpg").toStdString()), cJpeg::Written);
    }
    // Each makes a .ppm of each .jpg, for Qt to read; Qt itself gets the files.
    for (const char* command :
         {"ln -s $f $f.ppm", "djpeg -strict -outfile $f.ppm $f",
          "convert -regard-warnings $f -depth 8 $f.ppm",
          "ffmpeg -nostdin -v repeat+warning -i $f -pix_fmt rgb24 -update 1 $f.ppm"}) {
        QProcess shell;
        shell.setWorkingDirectory(folder.path());
        shell.start(u"bash"_s, {u"-c"_s, u"for f in *.jpg; do %1 || exit; done"_s.arg(
                                             QLatin1String(command))});
        ASSERT_TRUE(shell.waitForFinished(120000));
        // FFmpeg says the one of any file of a few hundred bytes, libjpeg-turbo's own included,
        // the other of its own conversion to the format written.
        for (const QByteArray& line : shell.readAllStandardError().split('\n'))
            EXPECT_TRUE(line.isEmpty() || line.endsWith("EOI missing, emulating") ||
                        line.contains("deprecated pixel format used"))
                << line.constData();
        ASSERT_EQ(shell.exitCode(), 0) << command;
        for (std::size_t i = 0; i < std::size(samples); ++i) {
            const auto& [f, width, height, quality, limit] = samples[i];
            const QImage read(file(i, ".jpg.ppm"));
            ASSERT_EQ(read.size(), QSize(width, height)) << command << ", file " << i;
            double sum = 0;
            for (int p = 0; p < width * height; ++p) {
                const Bgr c = colourAt(picture.view(), p % width, p / width);
                const QRgb found = read.pixel(p % width, p / width);
                const double luma = 0.299 * c.red + 0.587 * c.green + 0.114 * c.blue;
                sum += std::abs(qRed(found) - (f[2] == 0 ? luma : c.red)) +
                       std::abs(qGreen(found) - (f[2] == 0 ? luma : c.green)) +
                       std::abs(qBlue(found) - (f[2] == 0 ? luma : c.blue));
            }
            EXPECT_LE(sum / (3.0 * width * height), limit) << command << ", file " << i;
            QFile::remove(file(i, ".jpg.ppm"));
        }
    }
}

} // namespace
} // namespace varnholt::test
