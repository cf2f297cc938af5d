#include "pdf/PdfReader.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace varnholt {

using pdf::Ask;
using pdf::Fault;

namespace {

constexpr int patienceMs = 30'000;
constexpr int waitMs = 20;
constexpr std::size_t mostWanted = 6;

template <typename... Parts>
QByteArray requestOf(Ask ask, const Parts&... parts)
{
    QByteArray request;
    QDataStream stream(&request, QIODevice::WriteOnly);
    stream << ask;
    (stream << ... << parts);
    return request;
}

QImage imageFrom(const QByteArray& pixels, QSize size, QImage::Format format)
{
    const qsizetype perRow = pixels.size() / std::max(size.height(), 1);
    auto* kept = new QByteArray(pixels);
    QImage image(
        reinterpret_cast<const uchar*>(kept->constData()), size.width(), size.height(), perRow,
        format, [](void* held) { delete static_cast<QByteArray*>(held); }, kept);
    if (image.isNull()) {
        delete kept;
    }
    return image;
}

} // namespace

QString PdfReader::program()
{
    const QString own = QCoreApplication::applicationDirPath();
    for (const char* folder : {"/plugins/", "/../lib/varnholt/plugins/"}) {
        for (const char* name : {"varnholt_pdf_reader", "varnholt_pdf_reader.exe"}) {
            const QFileInfo file(own + QLatin1String(folder) + QLatin1String(name));
            if (file.isExecutable()) {
                return file.filePath();
            }
        }
    }
    return {};
}

PdfReader::PdfReader(QString program, QObject* parent)
    : QObject(parent)
    , program_(std::move(program))
{
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(&process_, &QProcess::readyReadStandardOutput, this, &PdfReader::receive);
    const auto gone = [this] {
        opened_ = false;
        if (process_.state() == QProcess::NotRunning && sent_) {
            finish(Fault::Stopped);
        }
    };
    connect(&process_, &QProcess::finished, this, gone);
    connect(&process_, &QProcess::errorOccurred, this, gone);
    patience_.setSingleShot(true);
    connect(&patience_, &QTimer::timeout, this, [this] {
        if (sent_) {
            stop();
            finish(Fault::TooSlow);
        }
    });
}

PdfReader::~PdfReader()
{
    disconnect(&process_, nullptr, this, nullptr);
    stop();
}

void PdfReader::stop()
{
    const QSignalBlocker quiet(&process_);
    process_.kill();
    process_.waitForFinished();
    opened_ = false;
}

QString PdfReader::sentence(Fault fault, int page) const
{
    const QString file = QDir::toNativeSeparators(path_);
    switch (fault) {
    case Fault::CannotRead:
        return tr("This file cannot be read: %1").arg(file);
    case Fault::Locked:
        return tr("This PDF file needs a password: %1").arg(file);
    case Fault::UnknownLock:
        return tr("This PDF file is locked in a way that cannot be opened here: %1").arg(file);
    case Fault::NoPages:
        return tr("This PDF file has no pages: %1").arg(file);
    case Fault::TooManyPages:
        return tr("This PDF file has more than %1 pages. Save the part that you need as a file of "
                  "its own: %2")
            .arg(pdf::mostPages)
            .arg(file);
    case Fault::NoPdf:
        return tr("This file is damaged, or it is no PDF file: %1").arg(file);
    case Fault::CannotDraw:
        return tr("Page %1 of this PDF file cannot be shown: %2").arg(page + 1).arg(file);
    case Fault::TooSlow:
    case Fault::Stopped:
    case Fault::None:
        break;
    }
    if (page < 0) {
        return tr("This PDF file cannot be read, because it is damaged or asks for too much: %1")
            .arg(file);
    }
    return tr("Page %1 of this PDF file cannot be read, because it is damaged or asks for too "
              "much: %2")
        .arg(page + 1)
        .arg(file);
}

void PdfReader::send()
{
    if (sent_ || jobs_.empty()) {
        return;
    }
    if (process_.state() == QProcess::NotRunning) {
        process_.start(program_, QStringList());
    }
    if (!opened_ && jobs_.front().request != openRequest_) {
        // A reader that was stopped reads the file anew. Where that fails so does what follows.
        jobs_.push_front({openRequest_, [](Fault, const QByteArray&) {}, -1, {}});
    }
    const QByteArray& request = jobs_.front().request;
    const auto size = static_cast<std::uint32_t>(request.size());
    sent_ = true;
    hasHead_ = false;
    sinceSent_.start();
    patience_.start(patienceMs);
    process_.write(reinterpret_cast<const char*>(&size), sizeof size);
    process_.write(request);
}

void PdfReader::receive()
{
    if (!hasHead_) {
        if (process_.bytesAvailable() < qint64{sizeof head_}) {
            return;
        }
        process_.read(reinterpret_cast<char*>(&head_), sizeof head_);
        if (head_.size > 4 * pdf::mostPixels) {
            stop();
            finish(Fault::Stopped);
            return;
        }
        hasHead_ = true;
        content_ = QByteArray(static_cast<qsizetype>(head_.size), Qt::Uninitialized);
        filled_ = 0;
    }
    filled_ +=
        std::max<qint64>(process_.read(content_.data() + filled_, content_.size() - filled_), 0);
    if (filled_ == content_.size()) {
        finish(head_.fault, std::exchange(content_, {}));
    }
}

void PdfReader::finish(Fault fault, const QByteArray& content)
{
    patience_.stop();
    const Job job = std::move(jobs_.front());
    jobs_.pop_front();
    sent_ = false;
    hasHead_ = false;
    if (job.request == openRequest_) {
        opened_ = true;
    }
    job.done(fault, content);
    send();
}

QByteArray PdfReader::waitFor(const QByteArray& request, int page, const KeepGoing& goOn)
{
    bool done = false;
    Fault fault = Fault::None;
    QByteArray content;
    // What is being answered already comes first.
    jobs_.insert(jobs_.begin() + (sent_ ? 1 : 0), Job{request,
                                                      [&](Fault answered, const QByteArray& got) {
                                                          done = true;
                                                          fault = answered;
                                                          content = got;
                                                      },
                                                      -1,
                                                      {}});
    send();
    while (!done) {
        process_.waitForReadyRead(waitMs);
        const bool stopped = !goOn();
        if (!done && (stopped || sinceSent_.hasExpired(patienceMs))) {
            stop();
            jobs_.clear();
            sent_ = false;
            patience_.stop();
            if (stopped) {
                throw Cancelled();
            }
            fault = Fault::TooSlow;
            break;
        }
    }
    if (fault == Fault::Locked) {
        throw PdfLocked(sentence(fault, page));
    }
    if (fault != Fault::None) {
        throw Error(sentence(fault, page));
    }
    return content;
}

void PdfReader::open(const QString& path, const QString& password, const KeepGoing& goOn)
{
    stop();
    jobs_.clear();
    sent_ = false;
    path_ = path;
    pages_.clear();
    openRequest_ = requestOf(Ask::Open, QFileInfo(path).absoluteFilePath(), password);
    QDataStream sizes(waitFor(openRequest_, -1, goOn));
    while (!sizes.atEnd()) {
        QSizeF size;
        sizes >> size;
        // A page without a size is drawn by nobody; it takes the room of one.
        const bool sound = size.width() >= 1 && size.height() >= 1;
        pages_.push_back(sound ? size : QSizeF(595, 842));
    }
}

QImage PdfReader::render(int page, QSize size, Colours colours, const KeepGoing& goOn)
{
    const bool grey = colours == Colours::Grey;
    const QByteArray pixels = waitFor(requestOf(Ask::Render, qint32{page}, size, grey), page, goOn);
    return imageFrom(pixels, size, grey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
}

std::vector<pdf::LineStart> PdfReader::lineStarts(int page, const KeepGoing& goOn)
{
    std::vector<pdf::LineStart> starts;
    QDataStream found(waitFor(requestOf(Ask::Lines, qint32{page}), page, goOn));
    while (!found.atEnd()) {
        pdf::LineStart& start = starts.emplace_back();
        found >> start.text >> start.place;
    }
    return starts;
}

void PdfReader::want(int page, QSize size)
{
    const auto isIt = [&](const Job& job) { return job.page == page; };
    const auto waiting = std::find_if(jobs_.begin() + (sent_ ? 1 : 0), jobs_.end(), isIt);
    if (sent_ && isIt(jobs_.front()) && jobs_.front().size == size) {
        return;
    }
    if (waiting != jobs_.end()) {
        jobs_.erase(waiting);
    }
    const auto tell = [this, page, size](Fault fault, const QByteArray& pixels) {
        Q_EMIT came(page, fault == Fault::None ? imageFrom(pixels, size, QImage::Format_RGB32)
                                               : QImage());
    };
    jobs_.insert(jobs_.begin() + (sent_ ? 1 : 0),
                 Job{requestOf(Ask::Render, qint32{page}, size, false), tell, page, size});
    if (jobs_.size() > mostWanted) {
        jobs_.pop_back();
    }
    send();
}

} // namespace varnholt
