#pragma once

#include "pdf/pdf_messages.h"
#include "store/errors.h"
#include "store/services.h"

#include <QElapsedTimer>
#include <QImage>
#include <QProcess>
#include <QSizeF>
#include <QTimer>

#include <deque>
#include <functional>
#include <vector>

namespace varnholt {

/// A PDF file that asks for another password than the one given.
class PdfLocked : public Error
{
public:
    using Error::Error;
};

/// Reads a PDF file through a process of its own, see `pdf_messages.h`. Pages count from 0; their
/// sizes are in points. Calls that wait keep calling `goOn` and throw `Cancelled` when it says so,
/// `Error` when the file cannot be read.
class PdfReader : public QObject
{
    Q_OBJECT

public:
    enum class Colours
    {
        All,
        Grey
    };

    /// The program that does it; empty where this one was built without.
    [[nodiscard]] static QString program();

    explicit PdfReader(QString program = PdfReader::program(), QObject* parent = nullptr);
    ~PdfReader() override;

    void open(const QString& path, const QString& password, const KeepGoing& goOn);
    [[nodiscard]] const std::vector<QSizeF>& pages() const { return pages_; }

    /// A page in a size in pixels, in 32-bit RGB or 8-bit grey.
    [[nodiscard]] QImage render(int page, QSize size, Colours colours, const KeepGoing& goOn);
    [[nodiscard]] std::vector<pdf::LineStart> lineStarts(int page, const KeepGoing& goOn);

    /// Asks for a page, which comes by `came`. What was asked for last comes first; of pages asked
    /// for before a handful is remembered.
    void want(int page, QSize size);

Q_SIGNALS:
    /// A page that was wanted; null when it cannot be drawn.
    void came(int page, const QImage& picture);

private:
    using Done = std::function<void(pdf::Fault fault, const QByteArray& content)>;
    struct Job
    {
        QByteArray request;
        Done done;
        /// What is wanted, and nobody waits for.
        int page = -1;
        QSize size;
    };

    QByteArray waitFor(const QByteArray& request, int page, const KeepGoing& goOn);
    void send();
    void receive();
    void finish(pdf::Fault fault, const QByteArray& content = {});
    void stop();
    [[nodiscard]] QString sentence(pdf::Fault fault, int page) const;

    QString program_;
    QString path_;
    QByteArray openRequest_;
    std::vector<QSizeF> pages_;
    QProcess process_;
    /// The process has the file open.
    bool opened_ = false;
    std::deque<Job> jobs_;
    /// The first job has been sent.
    bool sent_ = false;
    QElapsedTimer sinceSent_;
    QTimer patience_;
    pdf::Answer head_;
    bool hasHead_ = false;
    QByteArray content_;
    qsizetype filled_ = 0;
};

} // namespace varnholt
