#include "library/test_pictures.h"

#include "library/items.h"
#include "library/old_pictures.h"
#include "pictures/picture_files.h"
#include "store/plus_statements.h"
#include "store/statement.h"

#include <QCryptographicHash>
#include <QFile>

namespace varnholt {

QByteArray PictureSha(const QString& path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file) ||
        file.error() != QFileDevice::NoError) {
        return {};
    }
    return hash.result();
}

QString FindTestPicture(const QString& programFolder, const TestItem& item)
{
    const QString own = FindPictureFile(programFolder, item.SOLIndex);
    if (item.pictureSha.isNull() || PictureSha(own) == item.pictureSha) {
        return own;
    }
    const QString kept = OldPictureFile(programFolder, item.SOLIndex, MarkOfSha(item.pictureSha));
    for (const QString& path :
         {kept, programFolder + QStringLiteral("/Backups/Pictures/") +
                    QString::fromLatin1(item.pictureSha.toHex()) + QStringLiteral(".jpg")}) {
        if (PictureSha(path) == item.pictureSha) {
            return path;
        }
    }
    // What she sees now is not what the class saw: better none than another one.
    return QFile::exists(kept) ? QString() : kept;
}

std::vector<ChangedAnswer> ChangedAnswers(Connection& connection,
                                          const std::vector<TestItem>& items)
{
    std::vector<ChangedAnswer> changed;
    Statement row(connection, plus_statements::SelectName(static_cast<int>(ItemKind::Question)));
    for (const TestItem& item : items) {
        row.bind(1, std::int64_t{item.SOLIndex});
        if (!row.next()) {
            continue;
        }
        const QString answer = row.text(0);
        row.reset();
        if (answer != item.answer) {
            changed.push_back({item.position, answer});
        }
    }
    return changed;
}

} // namespace varnholt
