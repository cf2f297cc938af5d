// How pictures come into the window for many questions.
#include "many/frmAddMany.h"
#include "pdf/frmFromPdf.h"
#include "store/errors.h"
#include "store/services.h"
#include "toolkit/DesktopClipboard.h"
#include "toolkit/HintLabel.h"
#include "toolkit/background_work.h"
#include "toolkit/clipboard_probe.h"

#include <QCheckBox>
#include <QClipboard>
#include <QCollator>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QGuiApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace varnholt {

namespace {

/// A program that writes a screenshot is done with it by then.
constexpr int screenshotWrittenMs = 500;

QString screenshotFolder()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    const QString own = pictures + QStringLiteral("/Screenshots");
    return QFileInfo(own).isDir() ? own : pictures;
}

QStringList filesOf(const QString& folder)
{
    QStringList files;
    for (const QString& name : QDir(folder).entryList(QDir::Files)) {
        files.append(folder + u'/' + name);
    }
    // As people count: 2 comes before 10.
    QCollator byNumber{QLocale(QLocale::English)};
    byNumber.setNumericMode(true);
    std::sort(files.begin(), files.end(), byNumber);
    return files;
}

} // namespace

QStringList PictureFilesIn(const QMimeData& data)
{
    QStringList paths;
    for (const QUrl& url : data.urls()) {
        const QString path = url.toLocalFile();
        if (!path.isEmpty() && !path.endsWith(QStringLiteral(".zip"), Qt::CaseInsensitive)) {
            paths.append(path);
        }
    }
    return paths;
}

void frmAddMany::addFiles(const QStringList& paths)
{
    QStringList files;
    for (const QString& path : paths) {
        QFileInfo(path).isDir() ? files.append(filesOf(path)) : files.append(path);
    }
    const QStringList papers = files.filter(
        QRegularExpression(QStringLiteral("\\.pdf$"), QRegularExpression::CaseInsensitiveOption));
    files.removeIf([&](const QString& file) { return papers.contains(file); });
    if (!files.isEmpty()) {
        addPictureFiles(files);
    }
    if (!papers.isEmpty()) {
        addPdfs(papers);
    }
}

void frmAddMany::addPdfs(const QStringList& files)
{
    if (PdfReader::program().isEmpty()) {
        lblHint_->say(tr("This program was installed without its part for PDF files. Take "
                         "screenshots of the questions instead."));
        return;
    }
    const int before = lstPictures_->count();
    QStringList failures;
    for (const QString& file : files) {
        try {
            frmFromPdf dialog(
                services_,
                [this](const QImage& picture) {
                    addRow(pending_.add(picture, margins(), quality()));
                },
                window());
            if (!dialog.open(file) || dialog.exec() == QDialog::Rejected) {
                break;
            }
        } catch (const Error& error) {
            failures.append(error.message());
        }
    }
    if (lstPictures_->count() > before) {
        lstPictures_->setCurrentRow(before);
    }
    lblHint_->say(failures.join(u' '));
    showState();
    // Desktops do not always give it back when a progress bar and a window close in one go.
    window()->activateWindow();
    txtAnswer_->setFocus();
}

void frmAddMany::addPictureFiles(const QStringList& files)
{
    const Margins wanted = margins();
    const int fine = quality();
    std::vector<int> taken;
    QStringList failures;
    try {
        RunInBackground(window(), tr("Taking the pictures in..."), LongWork::Cancel::Offered,
                        [&](const WorkProgress& progress) {
                            std::size_t done = 0;
                            for (const QString& file : files) {
                                progress(done++, static_cast<std::size_t>(files.size()));
                                try {
                                    taken.push_back(pending_.add(file, wanted, fine));
                                } catch (const Error& error) {
                                    failures.append(error.message());
                                }
                            }
                        });
    } catch (const Cancelled&) {
        // What has been taken in until then stays.
    } catch (const std::exception&) {
        failures.append(tr("There is not enough memory for this picture."));
    }
    const int before = lstPictures_->count();
    for (const int number : taken) {
        addRow(number);
    }
    if (current() < 0 || !taken.empty()) {
        lstPictures_->setCurrentRow(before < lstPictures_->count() ? before : 0);
    }
    lblHint_->say(failures.isEmpty() ? QString()
                                     : tr("%n file(s) could not be taken in.", nullptr,
                                          static_cast<int>(failures.size())) +
                                           u' ' + failures.front());
    showState();
    txtAnswer_->setFocus();
}

void frmAddMany::addImage(const QImage& picture)
{
    attempt([&] {
        addRow(pending_.add(picture, margins(), quality()));
        lblHint_->say({});
        if (lstPictures_->count() == 1) {
            lstPictures_->setCurrentRow(0);
        }
        txtAnswer_->setFocus();
    });
    showState();
}

void frmAddMany::cmdPaste_Click()
{
    if (!services_.clipboard->answers()) {
        lblHint_->say(ClipboardSilentSentence());
        return;
    }
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    if (const QStringList files = copied ? PictureFilesIn(*copied) : QStringList();
        !files.isEmpty()) {
        addFiles(files);
        return;
    }
    attempt([this] {
        const QImage picture = services_.clipboard->image();
        if (picture.isNull()) {
            throw Error(tr("There is no picture to paste. Copy one first."));
        }
        addImage(picture);
    });
}

void frmAddMany::cmdAddFiles_Click()
{
    const QStringList files = services_.fileDialogs->openFiles(
        tr("Pictures (*.png *.jpg *.jpeg *.gif *.bmp *.webp *.tif)"));
    if (!files.isEmpty()) {
        addFiles(files);
    }
}

void frmAddMany::cmdFromPdf_Click()
{
    const std::optional<QString> file = services_.fileDialogs->openFile(tr("PDF Files (*.pdf)"));
    if (file) {
        addPdfs({*file});
    }
}

void frmAddMany::chkCatch_Click(bool on)
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    delete std::exchange(screenshots_, nullptr);
    disconnect(clipboard, nullptr, this, nullptr);
    if (!on) {
        return;
    }
    connect(clipboard, &QClipboard::dataChanged, this, [this] {
        const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
        if (copied && copied->hasImage()) {
            cmdPaste_Click();
        }
    });
    knownScreenshots_ = filesOf(screenshotFolder());
    screenshots_ = new QFileSystemWatcher({screenshotFolder()}, this);
    connect(screenshots_, &QFileSystemWatcher::directoryChanged, this, [this] {
        QTimer::singleShot(screenshotWrittenMs, this, &frmAddMany::takeNewScreenshots);
    });
}

void frmAddMany::takeNewScreenshots()
{
    if (!chkCatch_->isChecked()) {
        return;
    }
    QStringList fresh = filesOf(screenshotFolder());
    const QStringList now = fresh;
    fresh.removeIf([this](const QString& file) { return knownScreenshots_.contains(file); });
    knownScreenshots_ = now;
    if (!fresh.isEmpty()) {
        addFiles(fresh);
    }
}

void frmAddMany::dragEnterEvent(QDragEnterEvent* event)
{
    if (!PictureFilesIn(*event->mimeData()).isEmpty() || mayHoldPicture(*event->mimeData())) {
        event->acceptProposedAction();
    }
}

void frmAddMany::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    // Afterwards, because the program that it comes from waits for this to return.
    if (const QStringList files = PictureFilesIn(*event->mimeData()); !files.isEmpty()) {
        QMetaObject::invokeMethod(
            this, [this, files] { addFiles(files); }, Qt::QueuedConnection);
        return;
    }
    attempt([&] {
        const QImage picture = pictureFrom(*event->mimeData());
        QMetaObject::invokeMethod(
            this, [this, picture] { addImage(picture); }, Qt::QueuedConnection);
    });
}

} // namespace varnholt
