// Writing a .pptx of five hundred slides with pictures of 60 kB, against libzip storing the
// same bytes, and the memory that takes; and with an answer slide after each, against without.

#include "presentation/pptx/pptx_program.h"
#include "presentation/slide_builder.h"
#include "support/report.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <zip.h>

#include <cstdlib>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace varnholt;

namespace {

constexpr int slides = 500;
constexpr qsizetype pictureSize = 60'000;

QString picture(const QString& folder, int number)
{
    return folder + QStringLiteral("/%1.jpg").arg(number);
}

/// A JPEG as far as headers go, with noise for its coded part.
void writePicture(const QString& path, std::mt19937& random)
{
    QByteArray bytes("\xFF\xD8\xFF\xE0\0\x10JFIF\0\1\1\1\0\x60\0\x60\0\0", 20);
    bytes += QByteArray("\xFF\xDB\0\x43\0", 5) + QByteArray(64, 1);
    bytes += QByteArray("\xFF\xC0\0\x0B\x08\1\x5E\2\x58\1\1\x11\0\xFF\xDA\0\x08\1\1\0\0\x3F\0", 23);
    while (bytes.size() < pictureSize - 2) {
        bytes += char(random() % 255);
    }
    bytes += "\xFF\xD9";
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

/// The size of the file in bytes.
qint64 buildPptx(const QString& folder, int count, const SlideWishes& wishes = {})
{
    List1<DrawnQuestion> pool;
    for (int i = 1; i <= count; ++i) {
        pool.append({{i, i, 1, 1, QStringLiteral("A")}, true});
    }
    const BuildInput input{
        pool,
        true,
        false,
        [](const QuestionRecord&) { return QStringLiteral("Algebra - Roots"); },
        [&folder](const QuestionRecord& question) { return picture(folder, question.SOLIndex); },
        wishes};
    PptxSettings settings;
    settings.programFolder = folder;
    PptxProgram program(settings);
    if (BuildPresentation(program, input).end != BuildOutcome::End::Complete) {
        qFatal("the build failed");
    }
    const qint64 size = QFileInfo(program.writtenPath()).size();
    QFile::remove(program.writtenPath());
    return size;
}

void storeWithLibzip(const QString& folder, int count)
{
    const QByteArray path = QFile::encodeName(folder + QStringLiteral("/peer.zip"));
    int error = 0;
    zip_t* archive = zip_open(path.constData(), ZIP_CREATE | ZIP_EXCL, &error);
    for (int i = 1; i <= count; ++i) {
        zip_source_t* source =
            zip_source_file(archive, QFile::encodeName(picture(folder, i)).constData(), 0, -1);
        const QByteArray name = QByteArray::number(i) + ".jpg";
        const zip_int64_t index = zip_file_add(archive, name.constData(), source, 0);
        zip_set_file_compression(archive, zip_uint64_t(index), ZIP_CM_STORE, 0);
    }
    if (zip_close(archive) != 0) {
        qFatal("the peer failed");
    }
    QFile::remove(QFile::decodeName(path));
}

/// Largest resident memory, in kB, of a process of its own that builds so many slides.
double peakMemory(const QString& folder, int count)
{
    const pid_t child = fork();
    if (child == 0) {
        buildPptx(folder, count);
        _exit(0);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? double(usage.ru_maxrss) : -1;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    std::mt19937 random(1);
    for (int i = 1; i <= slides; ++i) {
        writePicture(picture(folder.path(), i), random);
    }
    const double few = peakMemory(folder.path(), slides / 5);
    const double many = peakMemory(folder.path(), slides);
    const double ratio = bench::ratio(
        11, [&] { buildPptx(folder.path(), slides); },
        [&] { storeWithLibzip(folder.path(), slides); });
    SlideWishes twins;
    twins.answersAfterEach = true;
    const double twinsCpu = bench::ratio(
        11, [&] { buildPptx(folder.path(), slides, twins); },
        [&] { buildPptx(folder.path(), slides); });
    const double twinsBytes =
        double(buildPptx(folder.path(), slides, twins)) / double(buildPptx(folder.path(), slides));
    std::printf(".pptx, %d slides: peak memory %.0f kB; with a fifth of them %.0f kB (the pictures "
                "differ by %.0f kB)\n",
                slides, many, few, double(pictureSize) * slides * 4 / 5 / 1000);
    return bench::report(
        {{"pptx.500", ratio, 2.0, 1.2, "x", "libzip storing the same bytes, CPU"},
         {"pptx.500.twins", twinsCpu, 1.25, -1, "x", "the same without answer slides, CPU"},
         {"pptx.500.bytes", twinsBytes, 1.02, -1, "x", "the same without answer slides, bytes"},
         {"pptx.memory", (many - few) * 1000 / (double(pictureSize) * slides * 0.8), 0.1, 0.05, "",
          "bytes of memory a byte of pictures more"}},
        argc, argv);
}
