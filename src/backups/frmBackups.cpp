#include "backups/frmBackups.h"

#include "backups/LibraryBackups.h"
#include "backups/backup_words.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"

#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalBlocker>
#include <QStorageInfo>
#include <QTreeWidget>

namespace varnholt {

namespace {

using State = BackupManifest::State;
using CopyOutcome = BackupStore::CopyOutcome;

const QString columnsSetting = QStringLiteral("frmBackups/columns");

QString remark(const BackupInfo& backup)
{
    switch (backup.state) {
    case State::Damaged:
        return frmBackups::tr("Damaged");
    case State::Newer:
        return frmBackups::tr("Made by a newer version");
    case State::Whole:
        break;
    }
    return {};
}

} // namespace

frmBackups::frmBackups(Services& services, LibraryBackups& backups, QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , backups_(backups)
{
    setObjectName(QStringLiteral("frmBackups"));
    setWindowTitle(tr("Backups"));
    buildControls();
    lstBackups_->header()->restoreState(QSettings().value(columnsSetting).toByteArray());
    connectControls();
    fillStores();
    reload();
    showRow();
}

frmBackups::~frmBackups()
{
    QSettings().setValue(columnsSetting, lstBackups_->header()->saveState());
}

void frmBackups::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    (lstBackups_->isVisibleTo(this) ? static_cast<QWidget*>(lstBackups_) : cmdBackUpNow_)
        ->setFocus();
}

void frmBackups::fillStores()
{
    stores_ = {backups_.store()};
    cboStore_->clear();
    cboStore_->addEntry(tr("This library's own folder"), 0);
    const QString place = backups_.secondPlace().folder;
    if (!place.isEmpty()) {
        const QString shown = QDir::toNativeSeparators(place);
        for (const BackupStore& store : BackupStore::storesAt(place)) {
            const bool own = QDir(store.folder()).dirName() == backups_.store().identity();
            cboStore_->addEntry(own ? shown : tr("%1, of another library").arg(shown),
                                static_cast<std::int32_t>(stores_.size()));
            stores_.push_back(store);
        }
    }
    cboStore_->showEntry(0);
    lblStore_->setVisible(stores_.size() > 1);
    cboStore_->setVisible(stores_.size() > 1);
}

const BackupStore& frmBackups::shownStore() const
{
    return stores_.at(static_cast<std::size_t>(std::max(0, cboStore_->listIndex())));
}

void frmBackups::reload()
{
    const BackupInfo* before = current();
    const QString id = before ? before->id : QString();
    RunInBackground(window(), tr("Reading the backups…"), LongWork::Cancel::NotOffered,
                    [&](const WorkProgress&) { list_ = shownStore().list(); });
    const QSignalBlocker quiet(lstBackups_);
    lstBackups_->clear();
    int row = 0;
    for (const BackupInfo& backup : list_) {
        const bool known = backup.state == State::Whole;
        auto* item = new QTreeWidgetItem(
            {BackupWords::when(backup.madeAt, backups_.now()),
             known ? BackupWords::number(backup.questions) : QString(),
             backup.added ? BackupWords::number(*backup.added) : QString(),
             known ? BackupWords::size(backup.bytes) : QString(), remark(backup)});
        for (int column = 0; column < item->columnCount(); ++column) {
            item->setToolTip(column, backup.reason);
            if (column >= 1 && column <= 3) {
                item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
            }
            if (!known) {
                item->setForeground(column, palette().brush(QPalette::PlaceholderText));
            }
        }
        lstBackups_->addTopLevelItem(item);
        row = backup.id == id ? lstBackups_->topLevelItemCount() - 1 : row;
    }
    lstBackups_->setCurrentItem(lstBackups_->topLevelItem(row));
    showState();
    showPlace();
}

const BackupInfo* frmBackups::current() const
{
    const int row = lstBackups_->indexOfTopLevelItem(lstBackups_->currentItem());
    return row < 0 ? nullptr : &list_.at(static_cast<std::size_t>(row));
}

void frmBackups::showState()
{
    const BackupInfo* backup = current();
    const bool hadFocus = lstBackups_->hasFocus();
    lstBackups_->setVisible(!list_.empty());
    lblEmpty_->setVisible(list_.empty());
    if (hadFocus && list_.empty()) {
        cmdBackUpNow_->setFocus();
    }
    const FeatureState make = backups_.canMake();
    const FeatureState restore = backups_.canRestore();
    cmdBackUpNow_->setEnabled(make.on);
    cmdBackUpNow_->setToolTip(make.reason);
    cmdRestore_->setEnabled(restore.on && backup && backup->state == State::Whole);
    cmdRestore_->setToolTip(!restore.on ? restore.reason : backup ? backup->reason : QString());
    cmdCheckFiles_->setEnabled(make.on && backup && backup->state == State::Whole);
    cmdCheckFiles_->setToolTip(make.reason);
    cmdChoose_->setEnabled(make.on);
    cmdChoose_->setToolTip(make.reason);
    cmdNone_->setEnabled(make.on && !txtPlace_->text().isEmpty());
    cmdNone_->setToolTip(make.reason);
}

void frmBackups::showRow()
{
    showState();
    const BackupInfo* backup = current();
    say(backup && !backup->reason.isEmpty() ? backup->reason : backups_.canRestore().reason);
}

void frmBackups::showPlace()
{
    const LibraryBackups::SecondPlace place = backups_.secondPlace();
    txtPlace_->setText(QDir::toNativeSeparators(place.folder));
    cmdNone_->setEnabled(backups_.canMake().on && !place.folder.isEmpty());
    QString text;
    if (!place.folder.isEmpty()) {
        text = place.copiedAt == 0
                   ? tr("No backup has been copied there yet.")
                   : tr("Last copied: %1.").arg(BackupWords::when(place.copiedAt, backups_.now()));
        if (!QFileInfo(place.folder).isDir()) {
            text += u' ' + tr("The folder is not there just now; it is filled when it is.");
        } else if (QStorageInfo(place.folder).device() ==
                   QStorageInfo(services_.programFolder).device()) {
            text += u' ' + tr("It is on the same disk as the question library, so it does not help "
                              "when that disk breaks.");
        }
    }
    lblCopied_->setText(text);
    lblCopied_->setVisible(!text.isEmpty());
}

void frmBackups::say(const QString& sentence)
{
    lblNote_->say(sentence);
}

void frmBackups::attempt(const std::function<void()>& work)
{
    try {
        work();
    } catch (const Cancelled&) {
        reload();
        say(tr("Stopped."));
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Backups"), error.message());
        reload();
    }
}

void frmBackups::cboStore_Click()
{
    reload();
    showRow();
}

void frmBackups::cmdBackUpNow_Click()
{
    attempt([this] {
        const BackupResult made =
            backups_.make(window(), tr("Backing up the question library and its pictures…"));
        cboStore_->showEntry(0);
        reload();
        lstBackups_->setCurrentItem(lstBackups_->topLevelItem(0));
        say(made.unreadable.empty()
                ? tr("The backup is made.")
                : tr("The backup is made without %n picture(s) that cannot be read.", nullptr,
                     static_cast<int>(made.unreadable.size())));
        if (!backups_.secondPlace().folder.isEmpty()) {
            cmdChoose_->setEnabled(true);
            const CopyOutcome copied = backups_.fillSecondPlace(window());
            fillStores();
            showPlace();
            if (copied == CopyOutcome::NotThere) {
                say(tr("The backup is made. It will be copied to the second place when that is "
                       "there."));
            }
        }
    });
}

void frmBackups::cmdCheckFiles_Click()
{
    const BackupInfo* backup = current();
    if (!backup) {
        return;
    }
    attempt([this, id = backup->id] {
        BackupCheck check;
        BackupStore store = shownStore();
        RunInBackground(window(), tr("Reading every file of the backup…"),
                        LongWork::Cancel::Offered,
                        [&](const WorkProgress& progress) { check = store.verify(id, progress); });
        reload();
        say(check.whole
                ? tr("Every file of this backup is as it was.")
                : tr("%n file(s) of this backup are damaged; the next backup puts good ones there "
                     "where the library has them.",
                     nullptr, static_cast<int>(check.damagedFiles.size())));
    });
}

bool frmBackups::agreed(const BackupInfo& backup)
{
    const QString made = BackupWords::when(backup.madeAt, backups_.now());
    if (backups_.isDamaged()) {
        return services_.messageBoxes->yesNo(
            tr("Restore?"),
            tr("The damaged library is replaced by the backup: %1. Newer questions that can still "
               "be read go to the trash. The damaged file is kept beside the library.")
                .arg(made),
            MessageBoxes::Answer::Yes);
    }
    const BackupPlan plan = backups_.plan(window(), shownStore(), backup.id);
    return services_.messageBoxes->yesNo(tr("Restore?"),
                                         tr("When you restore the backup \"%1\":\n\n%2\n\nToday's "
                                            "library is backed up first, so that "
                                            "you can come back to it.")
                                             .arg(made, BackupWords::sentences(plan).join(u'\n')),
                                         MessageBoxes::Answer::Yes);
}

void frmBackups::cmdRestore_Click()
{
    const BackupInfo* chosen = current();
    if (!cmdRestore_->isEnabled() || !chosen) {
        return;
    }
    attempt([this, backup = *chosen] {
        if (!agreed(backup)) {
            return;
        }
        const BackupRestored restored = backups_.restore(window(), shownStore(), backup.id);
        reload();
        say(restored.picturesLost.empty()
                ? tr("The library is as it was: %1.")
                      .arg(BackupWords::when(backup.madeAt, backups_.now()))
                : tr("The library is restored, but %n picture(s) could not be put back.", nullptr,
                     static_cast<int>(restored.picturesLost.size())));
        lstBackups_->setFocus();
    });
}

void frmBackups::cmdChoose_Click()
{
    const std::optional<QString> folder = services_.fileDialogs->openFolder(
        tr("Also Copy Backups To"), backups_.secondPlace().folder);
    if (!folder) {
        return;
    }
    attempt([&] {
        const QString own = QDir(services_.programFolder).canonicalPath() + u'/';
        if ((QDir(*folder).canonicalPath() + u'/').startsWith(own)) {
            throw Error(tr("That folder is the question library's own. Please choose one on "
                           "another disk or a stick."));
        }
        backups_.setSecondPlace(*folder);
        showPlace();
        backups_.fillSecondPlace(window());
        fillStores();
        reload();
    });
}

void frmBackups::cmdNone_Click()
{
    attempt([this] {
        backups_.setSecondPlace({});
        fillStores();
        reload();
        say(tr("Backups are no longer copied to a second place. Those that are there stay."));
    });
}

} // namespace varnholt
