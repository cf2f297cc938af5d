#pragma once

#include "library/backup/backup_restore.h"

#include <QCoreApplication>
#include <QStringList>

namespace varnholt {

/// What windows say of backups.
class BackupWords
{
    Q_DECLARE_TR_FUNCTIONS(BackupWords)

public:
    /// "Today 14:05", "Yesterday 08:10" or the whole date; seconds of UTC.
    [[nodiscard]] static QString when(std::int64_t time, std::int64_t now);
    /// "25.3 MB".
    [[nodiscard]] static QString size(std::int64_t bytes);
    /// A number as a list shows it.
    [[nodiscard]] static QString number(std::int64_t value);
    /// Tells of the newest good backup, a whole sentence.
    [[nodiscard]] static QString newest(const BackupInfo& backup, std::int64_t now);
    /// What a restore changes, a whole sentence each; one sentence when it changes nothing.
    [[nodiscard]] static QStringList sentences(const BackupPlan& plan);
};

} // namespace varnholt
