// Makes the library that is supplied with the program: the database and the questions' pictures.
//     varnholt_sample_generator CONTENT-FOLDER SCHEMA-FILE OUTPUT-FOLDER
// OUTPUT-FOLDER receives Varnholt.mdb and Files/N.jpg; what it held of them is replaced.
#include "answer_check.h"
#include "library_writer.h"
#include "page.h"

#include <QDir>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImageWriter>
#include <QSaveFile>

#include <cstdio>
#include <stdexcept>

namespace {

using namespace Qt::StringLiterals;
using namespace varnholt;

constexpr int JpegQuality = 90;

void savePicture(const QImage& image, const QString& path)
{
    QSaveFile file(path);
    bool written = file.open(QIODevice::WriteOnly);
    if (written) {
        QImageWriter writer(&file, "jpeg");
        writer.setQuality(JpegQuality);
        writer.setOptimizedWrite(true);
        written = writer.write(image) && file.commit();
    }
    if (!written)
        throw std::runtime_error(u"%1 cannot be written"_qs.arg(path).toStdString());
}

/// An answer has one line of the key on the slides: 100 points less the margins of its box.
void checkAnswerFits(const SampleQuestion& question)
{
    QFont font(u"Liberation Sans"_qs);
    font.setPixelSize(18); // A point is a pixel at 72 dots an inch.
    font.setHintingPreference(QFont::PreferNoHinting);
    if (QFontInfo(font).family() != font.family())
        throw std::runtime_error("the font Liberation Sans is not installed");
    if (QFontMetricsF(font).horizontalAdvance(u"99) "_qs + question.answer) > 85.6)
        throw std::runtime_error(
            u"%1: the answer is too wide for the key"_qs.arg(question.where).toStdString());
}

void generate(const QString& contentFolder, const QString& schema, const QString& output)
{
    const SampleContent content = readSampleContent(contentFolder);
    checkAnswers(content);
    const Typesetter typesetter;
    const QDir pictures(output + u"/Files"_qs);
    if (!pictures.mkpath(u"."_qs))
        throw std::runtime_error(u"%1 cannot be made"_qs.arg(pictures.path()).toStdString());
    QStringList expected;
    QStringList faults;
    for (const SampleQuestion& question : content.questions) {
        expected += u"%1.jpg"_qs.arg(question.key);
        try {
            checkAnswerFits(question);
            savePicture(drawQuestion(typesetter, question), pictures.filePath(expected.back()));
        } catch (const std::exception& error) {
            faults += QString::fromUtf8(error.what());
        }
    }
    if (!faults.isEmpty())
        throw std::runtime_error(faults.join(u'\n').toStdString());
    for (const QString& name : pictures.entryList(QDir::Files))
        if (!expected.contains(name))
            QFile::remove(pictures.filePath(name));
    writeLibrary(output + u"/Varnholt.mdb"_qs, schema, content);
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: varnholt_sample_generator CONTENT-FOLDER SCHEMA-FILE OUTPUT-FOLDER\n",
                   stderr);
        return 2;
    }
    try {
        generate(arguments.at(1), arguments.at(2), arguments.at(3));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "varnholt_sample_generator: %s\n", error.what());
        return 1;
    }
    return 0;
}
