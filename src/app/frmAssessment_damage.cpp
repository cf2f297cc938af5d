// What the frame does about a damaged library.
#include "app/frmAssessment.h"

#include "backups/backup_words.h"
#include "store/services.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QTimer>

namespace varnholt {

void frmAssessment::checkLibrary(bool mayTidy)
{
    connect(&check_, &LibraryCheck::damaged, this, &frmAssessment::tellDamage);
    check_.start(services_.programFolder, mayTidy);
}

void frmAssessment::tellDamage()
{
    constexpr int retryMs = 500;
    if (QApplication::activeModalWidget()) {
        QTimer::singleShot(retryMs, this, &frmAssessment::tellDamage);
        return;
    }
    const QString title = tr("Database Error");
    const QString told =
        tr("The question library is damaged, so questions may be missing or wrong:\n%1")
            .arg(QDir::toNativeSeparators(library_.connection().path()));
    const std::optional<BackupInfo> newest =
        library_.connection().isReadOnly() ? std::nullopt : backups_.newestGood();
    if (!newest) {
        services_.messageBoxes->inform(
            title, told + QStringLiteral("\n\n") +
                       tr("Keep a copy of this file before you change anything, and put an "
                          "undamaged copy from earlier in its place if you have one."));
        return;
    }
    onlyRead();
    if (services_.messageBoxes->yesNo(
            title,
            told + QStringLiteral("\n\n") + BackupWords::newest(*newest, backups_.now()) + u' ' +
                tr("The library can only be read until a backup is restored, so that nothing gets "
                   "worse. Do you want to choose the backup now?"),
            MessageBoxes::Answer::Yes)) {
        mnuBackups_Click();
    }
}

void frmAssessment::onlyRead()
{
    // Leaving a window writes to the library.
    const bool childLeft = child_ && closeChild();
    try {
        backups_.setDamaged();
    } catch (const DatabaseError&) {
        // A backup can take its place all the same.
    }
    if (childLeft) {
        openChild(childMaker_);
    }
    showNotice("lblDamaged",
               tr("The question library is damaged and can only be read. \"Backups…\" "
                  "in the menu \"More\" brings a good one back."));
    connect(&library_, &Library::changed, this, [this] {
        if (!backups_.isDamaged()) {
            delete findChild<QLabel*>(QStringLiteral("lblDamaged"));
        }
    });
}

void frmAssessment::restoreDamaged()
{
    if (!backups_.isDamaged() && !library_.connection().isReadOnly()) {
        onlyRead();
    }
    mnuBackups_Click();
}

} // namespace varnholt
