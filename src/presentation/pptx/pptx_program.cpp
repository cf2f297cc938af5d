#include "presentation/pptx/pptx_program.h"

#include "files/sync.h"
#include "presentation/pptx/pptx_writer.h"
#include "store/errors.h"
#include "store/file_name.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

constexpr auto partPrefix = ".varnholt-";
constexpr qint64 partLifetimeSeconds = 3600;

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

QString PptxProgram::giveFinalName()
{
    // Its end is the date, with a blank before it.
    constexpr qsizetype dateLength = 11;
    const QString name = PortableFileName(document().title, dateLength);
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
    if (document().slides.empty()) {
        return;
    }
    const QDateTime time = now();
    if (document().title.isEmpty()) {
        document().title = QStringLiteral("Varnholt ") + time.toString(u"yyyy-MM-dd HH.mm");
    }
    writePptx(partPath_, document(), time, settings_.keepGoing);
    writtenPath_ = giveFinalName();
    const bool opened = !settings_.open || settings_.open(writtenPath_);
    notice_ = noticeOf(settings_.insteadBecause, opened, native(writtenPath_));
}

} // namespace varnholt
