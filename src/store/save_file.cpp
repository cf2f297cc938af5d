#include "store/save_file.h"

#include "files/sync.h"
#include "store/errors.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace varnholt {

namespace {

class Words
{
    Q_DECLARE_TR_FUNCTIONS(varnholt::SaveFile)
};

} // namespace

bool WriteAll(QFileDevice& file, const QByteArray& bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const qint64 taken = file.write(bytes.constData() + done, bytes.size() - done);
        if (taken <= 0) {
            return false;
        }
        done += taken;
    }
    return true;
}

void SaveFile(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    const auto fail = [&](const QString& reason) {
        throw Error(Words::tr("The file %1 could not be saved (%2). Choose another place or make "
                              "room and try again.")
                        .arg(QDir::toNativeSeparators(path), reason));
    };
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || !WriteAll(file, bytes)) {
        fail(file.errorString());
    }
    if (const std::error_code error = SyncFile(file.handle())) {
        fail(QString::fromStdString(error.message()));
    }
    if (!file.commit()) {
        fail(file.errorString());
    }
    if (const std::error_code error = SyncFolder(QFileInfo(path).absoluteDir().filesystemPath())) {
        fail(QString::fromStdString(error.message()));
    }
}

} // namespace varnholt
