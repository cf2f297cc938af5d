#include "presentation/pptx/pptx_program.h"

#include "files/sync.h"
#include "pictures/picture_info.h"
#include "presentation/pptx/pptx_writer.h"
#include "store/errors.h"
#include "store/file_name.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cmath>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

constexpr auto partPrefix = ".varnholt-";
constexpr qint64 partLifetimeSeconds = 3600;

Emu emu(double points)
{
    return std::llround(points * double(emuPerPoint));
}

QString native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

/// What a killed program left behind. A younger one may be another program's work.
void removeOldParts(const QDir& folder, const QDateTime& now)
{
    const QFileInfoList parts =
        folder.entryInfoList({QLatin1String(partPrefix) + u'*'}, QDir::Files | QDir::Hidden);
    for (const QFileInfo& part : parts) {
        if (part.lastModified().secsTo(now) > partLifetimeSeconds) {
            QFile::remove(part.filePath());
        }
    }
}

QString noticeOf(const QString& insteadBecause, bool opened, const QString& path)
{
    QStringList paragraphs;
    if (!insteadBecause.isEmpty()) {
        paragraphs.append(insteadBecause);
        paragraphs.append(Words::tr("The slides were written to a presentation file instead."));
    }
    if (!opened) {
        paragraphs.append(
            Words::tr("There is no program on this computer to show the presentation."));
    }
    if (!paragraphs.isEmpty()) {
        paragraphs.append(Words::tr("You find it here:\n%1").arg(path));
    }
    return paragraphs.join(u"\n\n");
}

} // namespace

PptxProgram::PptxProgram(PptxSettings settings)
    : settings_(std::move(settings))
    , folder_(settings_.programFolder + QStringLiteral("/Presentations"))
{}

PptxProgram::~PptxProgram()
{
    if (!partPath_.isEmpty()) {
        QFile::remove(partPath_);
    }
}

QDateTime PptxProgram::now() const
{
    return settings_.now ? settings_.now() : QDateTime::currentDateTime();
}

void PptxProgram::addPresentation()
{
    QDir folder(folder_);
    if (!folder.mkpath(QStringLiteral("."))) {
        throw Error(
            Words::tr("The folder \"%1\" for presentations cannot be made.").arg(native(folder_)));
    }
    removeOldParts(folder, QDateTime::currentDateTime());
    partPath_ = folder_ + u'/' + QLatin1String(partPrefix) +
                QUuid::createUuid().toString(QUuid::WithoutBraces) + QStringLiteral(".part");
    QFile probe(partPath_);
    if (!probe.open(QIODevice::WriteOnly)) {
        throw Error(Words::tr("Nothing can be written to the folder \"%1\": %2.")
                        .arg(native(folder_), probe.errorString()));
    }
    probe.remove();
}

void PptxProgram::setVisible() {}

void PptxProgram::appendBlankSlide()
{
    document_.slides.emplace_back();
}

PptxSlide& PptxProgram::currentSlide()
{
    if (document_.slides.empty()) {
        throw Error(Words::tr("The presentation has no slide yet."));
    }
    return document_.slides.back();
}

PptxShape& PptxProgram::shapeAt(int shape)
{
    PptxSlide& slide = currentSlide();
    if (shape < 1 || size_t(shape) > slide.shapes.size()) {
        throw Error(Words::tr("The slide has no shape %1.").arg(shape));
    }
    return slide.shapes[size_t(shape) - 1];
}

void PptxProgram::addTextBox(double left, double top, double width, double height,
                             LongLines longLines)
{
    PptxShape box;
    box.left = emu(left);
    box.top = emu(top);
    box.width = emu(width);
    box.height = emu(height);
    box.longLines = longLines;
    currentSlide().shapes.push_back(std::move(box));
}

void PptxProgram::setShapeText(int shape, const QString& text)
{
    shapeAt(shape).text = text;
}

int PptxProgram::mediaFor(const QString& path)
{
    int& known = mediaByPath_[path];
    if (known == 0) {
        const PictureInfo info = readPictureInfo(path);
        PptxMedia media;
        media.path = path;
        media.bytes = info.uprightJpeg;
        media.format = info.uprightJpeg.isEmpty() ? info.format : QByteArrayLiteral("jpeg");
        media.width = emu(info.points.width());
        media.height = emu(info.points.height());
        document_.media.push_back(std::move(media));
        known = int(document_.media.size());
    }
    return known;
}

void PptxProgram::addPicture(const QString& path, double left, double top, double width,
                             double height, const QString& description)
{
    PptxSlide& slide = currentSlide();
    PptxShape picture;
    picture.media = mediaFor(path);
    const PptxMedia& media = document_.media[size_t(picture.media) - 1];
    picture.left = emu(left);
    picture.top = emu(top);
    picture.width = width == ownSize ? media.width : emu(width);
    picture.height = height == ownSize ? media.height : emu(height);
    picture.description = description;
    slide.shapes.push_back(std::move(picture));
}

void PptxProgram::announce(const DeckFacts& facts)
{
    document_.title = facts.name;
    document_.language = facts.language;
}

void PptxProgram::addTitle(double left, double top, double width, double height, double textSize,
                           const QString& text)
{
    addTextBox(left, top, width, height, LongLines::Wrap);
    PptxShape& shape = currentSlide().shapes.back();
    shape.title = true;
    shape.textSize = textSize;
    shape.text = text;
}

void PptxProgram::emphasise(int shape, double textSize)
{
    shapeAt(shape).framed = true;
    shapeAt(shape).textSize = textSize;
}

void PptxProgram::setNotes(const QString& text)
{
    currentSlide().notes = text;
}

void PptxProgram::setAdvance(int seconds)
{
    currentSlide().advance = seconds;
}

QSizeF PptxProgram::pictureSize(const QString& path)
{
    const PptxMedia& media = document_.media[size_t(mediaFor(path)) - 1];
    return {double(media.width) / double(emuPerPoint), double(media.height) / double(emuPerPoint)};
}

void PptxProgram::scaleHeight(int shape, double factor)
{
    PptxShape& target = shapeAt(shape);
    const Emu original =
        target.media == 0 ? target.height : document_.media[size_t(target.media) - 1].height;
    target.height = std::llround(double(original) * factor);
}

void PptxProgram::scaleWidth(int shape, double factor)
{
    PptxShape& target = shapeAt(shape);
    const Emu original =
        target.media == 0 ? target.width : document_.media[size_t(target.media) - 1].width;
    target.width = std::llround(double(original) * factor);
}

void PptxProgram::showSlide(int index)
{
    if (index < 1 || size_t(index) > document_.slides.size()) {
        throw Error(Words::tr("The presentation has no slide %1.").arg(index));
    }
}

QString PptxProgram::giveFinalName()
{
    // Its end is the date, with a blank before it.
    constexpr qsizetype dateLength = 11;
    const QString name = PortableFileName(document_.title, dateLength);
    for (int copy = 1; copy <= 1000; ++copy) {
        const QString path = folder_ + u'/' + name +
                             (copy == 1 ? QString() : QStringLiteral(" (%1)").arg(copy)) +
                             QStringLiteral(".pptx");
        // Never replaces a file, so one made since the last look is safe as well.
        if (!QFileInfo::exists(path) && QFile::rename(partPath_, path)) {
            // The file is on the disk; whether its name is, too, must not cost the slides.
            static_cast<void>(SyncFolder(QFileInfo(path).filesystemAbsolutePath()));
            return path;
        }
    }
    throw Error(Words::tr("The presentation could not be given a name in the folder \"%1\".")
                    .arg(native(folder_)));
}

void PptxProgram::finish()
{
    if (document_.slides.empty()) {
        return;
    }
    const QDateTime time = now();
    if (document_.title.isEmpty()) {
        document_.title = QStringLiteral("Varnholt ") + time.toString(u"yyyy-MM-dd HH.mm");
    }
    writePptx(partPath_, document_, time, settings_.keepGoing);
    writtenPath_ = giveFinalName();
    const bool opened = !settings_.open || settings_.open(writtenPath_);
    notice_ = noticeOf(settings_.insteadBecause, opened, native(writtenPath_));
}

} // namespace varnholt
