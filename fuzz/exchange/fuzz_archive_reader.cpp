// Unpacking an archive: whatever it holds, it ends, stays within its limits, and leaves
// ordinary files with plain names in its folder and nothing anywhere else.

#include "exchange/archive_reader.h"
#include "exchange/package_fields.h"
#include "store/errors.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>

using namespace varnholt;

namespace {

constexpr UnpackLimits limits{1 << 16, 1 << 17, 10, 0, 200};

/// In memory: a run makes thousands of files a second.
const QTemporaryDir& world()
{
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/varnholt-fuzz-XXXXXX"));
    return folder;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString archive = world().filePath(QStringLiteral("a.zip"));
    const QString out = world().filePath(QStringLiteral("out"));
    QDir().mkpath(out);
    {
        QFile file(archive);
        file.open(QIODevice::WriteOnly);
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }
    try {
        static_cast<void>(UnpackArchive(archive, out, limits, {},
                                        size % 2 ? Members::OfPackage : Members::AtRoot));
    } catch (const Error&) {
        // Refused: fine.
    }
    qint64 all = 0;
    for (const QFileInfo& entry : QDir(out).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot |
                                                          QDir::Hidden | QDir::System)) {
        all += entry.size();
        if (!entry.isFile() || entry.isSymLink() || entry.size() > limits.memberBytes ||
            entry.fileName().contains(u'\\') || !QFile::remove(entry.filePath())) {
            std::abort();
        }
    }
    if (all > limits.freeBytes + limits.growth * static_cast<qint64>(size) ||
        QDir(world().path())
                .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)
                .size() != 2) {
        std::abort();
    }
    return 0;
}
