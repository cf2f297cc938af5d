#include "many/PendingPictures.h"

#include "authoring/question_save.h"
#include "files/placing.h"
#include "library/Library.h"
#include "pictures/picture_files.h"
#include "store/plus_statements.h"
#include "store/statement.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace varnholt {

namespace {

constexpr int editedQuality = 90;

QString tr(const char* sentence)
{
    return QCoreApplication::translate("PendingPictures", sentence);
}

void rename(const QString& from, const QString& to)
{
    if (TakeFileTo(QFileInfo(from).filesystemFilePath(), QFileInfo(to).filesystemFilePath())) {
        throw Error(
            tr("The waiting picture cannot be renamed: %1").arg(QDir::toNativeSeparators(from)));
    }
}

bool areAlike(const QString& a, const QString& b)
{
    QFile first(a);
    QFile second(b);
    return first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly) &&
           first.size() == second.size() && first.readAll() == second.readAll();
}

} // namespace

PendingPictures::PendingPictures(Library& library)
    : library_(library)
    , folder_(library.programFolder() + QStringLiteral("/Pending"))
{}

QString PendingPictures::place(const QString& name) const
{
    return folder_ + u'/' + name;
}

QString PendingPictures::path(int number) const
{
    return place(QString::number(number) + QStringLiteral(".jpg"));
}

QString PendingPictures::answerPath(int number) const
{
    return place(QString::number(number) + QStringLiteral(".txt"));
}

void PendingPictures::keepAnswer(int number, const QString& answer)
{
    const QString written = place(QString::number(number) + QStringLiteral(".typed"));
    QFile file(written);
    const QByteArray bytes = answer.toUtf8();
    if (QFileInfo::exists(path(number)) && file.open(QIODevice::WriteOnly) &&
        file.write(bytes) == bytes.size() && file.flush()) {
        file.close();
        (void)TakeFileTo(QFileInfo(written).filesystemFilePath(),
                         QFileInfo(answerPath(number)).filesystemFilePath());
    }
}

QString PendingPictures::keptAnswer(int number) const
{
    QFile file(answerPath(number));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool PendingPictures::isQuestion(std::int32_t key)
{
    Statement row(library_.connection(),
                  plus_statements::SelectName(static_cast<int>(ItemKind::Question)));
    row.bind(1, std::int64_t{key});
    const bool there = row.next();
    row.reset();
    return there;
}

std::vector<int> PendingPictures::resume()
{
    // A number; the key of the question that it was becoming; what it is.
    static const QRegularExpression names(
        QStringLiteral("^(\\d{1,9})(?:-(\\d{1,9}))?\\.(jpg|out)$"));
    std::vector<int> numbers;
    for (const QString& name : QDir(folder_).entryList(QDir::Files)) {
        const QRegularExpressionMatch match = names.match(name);
        const int number = match.captured(1).toInt();
        if (!match.hasMatch()) {
            continue;
        }
        newest_ = std::max(newest_, number);
        if (match.captured(3) == QStringLiteral("out")) {
            QFile::remove(place(name));
            continue;
        }
        if (match.hasCaptured(2)) {
            const std::int32_t key = match.captured(2).toInt();
            const QString picture = FindPictureFile(library_.programFolder(), key);
            const bool placed = areAlike(place(name), picture);
            if (placed && isQuestion(key)) {
                QFile::remove(place(name));
                continue;
            }
            if (placed) {
                QFile::remove(picture);
            }
            rename(place(name), path(number));
        }
        numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

int PendingPictures::next()
{
    if (!QDir().mkpath(folder_)) {
        throw Error(tr("Pictures cannot wait here, because no folder can be made: %1")
                        .arg(QDir::toNativeSeparators(folder_)));
    }
    ++newest_;
    // Of a picture that has gone.
    QFile::remove(answerPath(newest_));
    return newest_;
}

int PendingPictures::add(const QString& file, Margins margins, int quality)
{
    const int number = next();
    WriteNormalPicture(file, path(number), margins, quality);
    return number;
}

int PendingPictures::add(const QImage& picture, Margins margins, int quality)
{
    const int number = next();
    WriteNormalPicture(picture, path(number), margins, quality);
    return number;
}

void PendingPictures::replace(int number, const QImage& picture)
{
    const QString edited = place(QString::number(number) + QStringLiteral(".edited"));
    QFile::remove(edited);
    WriteQuestionPicture(edited, picture, editedQuality);
    rename(edited, path(number));
}

void PendingPictures::takeOut(int number)
{
    rename(path(number), place(QString::number(number) + QStringLiteral(".out")));
}

void PendingPictures::putBack(int number)
{
    rename(place(QString::number(number) + QStringLiteral(".out")), path(number));
}

void PendingPictures::forgetTakenOut()
{
    for (const QString& name : QDir(folder_).entryList(
             {QStringLiteral("*.out"), QStringLiteral("*.txt"), QStringLiteral("*.typed")},
             QDir::Files)) {
        if (!name.endsWith(QStringLiteral(".txt")) ||
            !QFileInfo::exists(path(QFileInfo(name).baseName().toInt()))) {
            QFile::remove(place(name));
        }
    }
    QDir().rmdir(folder_);
}

std::int32_t PendingPictures::save(int number, const Filing& filing, const QString& answer)
{
    QString waiting = path(number);
    try {
        const std::int32_t key =
            library_.addWholeQuestion(filing, answer, [&](const QString& picture) {
                // A program killed from here on finds by the name what has become of it.
                const QString becoming = place(QStringLiteral("%1-%2.jpg")
                                                   .arg(number)
                                                   .arg(QFileInfo(picture).completeBaseName()));
                rename(waiting, becoming);
                waiting = becoming;
                QDir().mkpath(QFileInfo(picture).path());
                if (PlaceFile(QFileInfo(becoming).filesystemFilePath(),
                              QFileInfo(picture).filesystemFilePath(), Placing::MayShare)) {
                    throw Error(tr("The picture could not be put in its place, because the disk is "
                                   "full or the folder takes no files: %1")
                                    .arg(QDir::toNativeSeparators(picture)));
                }
            });
        QFile::remove(waiting);
        QFile::remove(answerPath(number));
        return key;
    } catch (const std::exception&) {
        if (waiting != path(number)) {
            rename(waiting, path(number));
        }
        throw;
    }
}

} // namespace varnholt
