// Every decoder of the machine reads what the encoder writes: libjpeg-turbo's djpeg, Qt,
// ImageMagick and FFmpeg, without a word of warning.

#include "imaging/cJpeg.h"
#include "imaging/reference_jpeg.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QImageReader>
#include <QProcess>
#include <QTemporaryDir>

#include <cmath>

namespace varnholt::test {
namespace {

struct Sample
{
    QString file;
    QImage source;
    Kind kind;
    int quality;
    bool fullColour;
};

QImage imageOf(const DeviceContext& context, bool grey)
{
    QImage image(context.Width(), context.Height(), QImage::Format_RGB888);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const Bgr c = colourAt(context.view(), x, y);
            const long luma = std::lround(0.299 * c.red + 0.587 * c.green + 0.114 * c.blue);
            const int level = static_cast<int>(luma);
            image.setPixel(x, y, grey ? qRgb(level, level, level) : qRgb(c.red, c.green, c.blue));
        }
    }
    return image;
}

double meanDifference(const QImage& a, const QImage& b)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                   std::abs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * a.width() * a.height());
}

class ReadersTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "test_jpeg_readers";
        static char* argv[] = {name, nullptr};
        s_application = new QCoreApplication(argc, argv);
        s_folder = new QTemporaryDir;
        ASSERT_TRUE(s_folder->isValid());
        constexpr std::array<std::array<int, 6>, 6> kSamplings = {{{1, 1, 0, 0, 0, 0},
                                                                   {1, 1, 1, 1, 1, 1},
                                                                   {2, 1, 1, 1, 1, 1},
                                                                   {1, 2, 1, 1, 1, 1},
                                                                   {4, 1, 1, 1, 1, 1},
                                                                   {2, 2, 1, 1, 1, 1}}};
        constexpr std::pair<int, int> kSizes[] = {{1, 1}, {7, 5}, {16, 16}, {33, 47}, {160, 121}};
        for (std::size_t s = 0; s < kSamplings.size(); ++s)
            for (const auto& [width, height] : kSizes)
                for (const Kind kind : {Kind::Noise, Kind::Flat, Kind::Smooth})
                    for (const int quality : {10, 75, 100})
                        addSample(kSamplings[s], s, width, height, kind, quality);
    }
    static void TearDownTestSuite()
    {
        s_samples.clear();
        delete s_folder;
        delete s_application;
    }

    static void addSample(const std::array<int, 6>& f, std::size_t sampling, int width, int height,
                          Kind kind, int quality)
    {
        const DeviceContext picture = makePicture(kind, width, height, 2);
        cJpeg encoder;
        encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]);
        encoder.Quality(quality);
        encoder.Comment("A comment");
        ASSERT_EQ(encoder.SampleHDC(&picture, width, height), cJpeg::Sampled);
        const QString name = QStringLiteral("%1-%2x%3-%4-%5.jpg")
                                 .arg(sampling)
                                 .arg(width)
                                 .arg(height)
                                 .arg(static_cast<int>(kind))
                                 .arg(quality);
        const std::string path = s_folder->filePath(name).toStdString();
        ASSERT_EQ(encoder.SaveFile(path), cJpeg::Written);
        s_samples.push_back({name, imageOf(picture, f[2] == 0), kind, quality, sampling == 1});
    }

    /// What a reader made of a sample against the source: flat and smooth pictures come back
    /// nearly as they were; noise does where nothing is thrown away.
    static void judge(const Sample& sample, const QImage& read)
    {
        ASSERT_EQ(read.size(), sample.source.size()) << qPrintable(sample.file);
        double limit = sample.quality == 100 ? 1.6 : sample.quality == 75 ? 4 : 14;
        if (sample.kind == Kind::Noise && !(sample.fullColour && sample.quality == 100))
            limit = sample.quality == 10 ? 75 : 62;
        EXPECT_LE(meanDifference(sample.source, read), limit) << qPrintable(sample.file);
    }

    static void run(const QString& program, const QStringList& arguments, QByteArray& errors)
    {
        QProcess process;
        process.setWorkingDirectory(s_folder->path());
        process.start(program, arguments);
        ASSERT_TRUE(process.waitForFinished(60000)) << qPrintable(program) << " is missing";
        errors = process.readAllStandardError();
        ASSERT_EQ(process.exitCode(), 0) << errors.constData();
    }

    static void judgeFolder(const QString& suffix)
    {
        for (const Sample& sample : s_samples) {
            const QImage read(s_folder->filePath(sample.file) + suffix);
            ASSERT_FALSE(read.isNull()) << qPrintable(sample.file);
            judge(sample, read);
        }
    }

    static inline QCoreApplication* s_application = nullptr;
    static inline QTemporaryDir* s_folder = nullptr;
    static inline std::vector<Sample> s_samples;
};

TEST_F(ReadersTest, Qt)
{
    ASSERT_EQ(s_samples.size(), 270U);
    for (const Sample& sample : s_samples) {
        QImageReader reader(s_folder->filePath(sample.file));
        const QImage image = reader.read();
        ASSERT_FALSE(image.isNull()) << qPrintable(reader.errorString());
        judge(sample, image);
    }
}

TEST_F(ReadersTest, Djpeg)
{
    for (const Sample& sample : s_samples) {
        QByteArray errors;
        run(QStringLiteral("djpeg"),
            {QStringLiteral("-strict"), QStringLiteral("-outfile"),
             sample.file + QStringLiteral(".d.ppm"), sample.file},
            errors);
        ASSERT_TRUE(errors.isEmpty()) << errors.constData();
    }
    judgeFolder(QStringLiteral(".d.ppm"));
}

TEST_F(ReadersTest, ImageMagick)
{
    // One start for all; the pattern is the program's own.
    QByteArray errors;
    run(QStringLiteral("convert"),
        {QStringLiteral("-regard-warnings"), QStringLiteral("*.jpg"), QStringLiteral("-set"),
         QStringLiteral("filename:name"), QStringLiteral("%f"), QStringLiteral("-depth"),
         QStringLiteral("8"), QStringLiteral("+adjoin"), QStringLiteral("%[filename:name].m.ppm")},
        errors);
    EXPECT_TRUE(errors.isEmpty()) << errors.constData();
    judgeFolder(QStringLiteral(".m.ppm"));
}

TEST_F(ReadersTest, Ffmpeg)
{
    QStringList arguments = {QStringLiteral("-nostdin"), QStringLiteral("-v"),
                             QStringLiteral("warning"), QStringLiteral("-threads"),
                             QStringLiteral("1")};
    for (const Sample& sample : s_samples)
        arguments << QStringLiteral("-i") << sample.file;
    for (std::size_t i = 0; i < s_samples.size(); ++i)
        arguments << QStringLiteral("-map") << QStringLiteral("%1:v").arg(i)
                  << QStringLiteral("-pix_fmt") << QStringLiteral("rgb24")
                  << QStringLiteral("-update") << QStringLiteral("1")
                  << s_samples[i].file + QStringLiteral(".f.ppm");
    QByteArray errors;
    run(QStringLiteral("ffmpeg"), arguments, errors);
    // It says the one of any file of a few hundred bytes, libjpeg-turbo's own included, the
    // other of its own conversion to the format written.
    for (const QByteArray& line : errors.split('\n'))
        EXPECT_TRUE(line.isEmpty() || line.endsWith("EOI missing, emulating") ||
                    line.contains("deprecated pixel format used"))
            << line.constData();
    judgeFolder(QStringLiteral(".f.ppm"));
}

} // namespace
} // namespace varnholt::test
