// The process that reads PDF files for the program: takes requests from its standard input and
// answers on its standard output until there are no more.
#include "pdf/pdf_messages.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QFile>
#include <QImage>
#include <QPdfDocument>
#include <QPdfSelection>

#include <cmath>
#include <cstdio>
#include <memory>

#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#else
#include <sys/resource.h>
#endif

namespace {

using namespace varnholt::pdf;

constexpr double tallestPage = 14400;
constexpr int lettersOfStart = 16;

class Reader
{
public:
    Reader()
    {
        input_.open(stdin, QIODevice::ReadOnly | QIODevice::Unbuffered);
        output_.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered);
    }

    void run()
    {
        std::uint32_t size = 0;
        while (read(reinterpret_cast<char*>(&size), sizeof size)) {
            QByteArray request(static_cast<qsizetype>(size), Qt::Uninitialized);
            if (!read(request.data(), request.size())) {
                return;
            }
            QDataStream stream(request);
            Ask ask{};
            stream >> ask;
            switch (ask) {
            case Ask::Open:
                open(stream);
                break;
            case Ask::Render:
                render(stream);
                break;
            case Ask::Lines:
                lines(stream);
                break;
            }
        }
    }

private:
    bool read(char* to, qint64 size)
    {
        while (size > 0) {
            const qint64 got = input_.read(to, size);
            if (got <= 0) {
                return false;
            }
            to += got;
            size -= got;
        }
        return true;
    }

    void answer(Fault fault, const char* content = nullptr, qint64 size = 0)
    {
        const Answer head{fault, static_cast<std::uint32_t>(size)};
        output_.write(reinterpret_cast<const char*>(&head), sizeof head);
        output_.write(content, size);
        output_.flush();
    }

    void answer(const QByteArray& content)
    {
        answer(Fault::None, content.constData(), content.size());
    }

    void open(QDataStream& stream)
    {
        QString path;
        QString password;
        stream >> path >> password;
        document_ = std::make_unique<QPdfDocument>();
        document_->setPassword(password);
        document_->load(path);
        switch (document_->error()) {
        case QPdfDocument::Error::None:
            break;
        case QPdfDocument::Error::FileNotFound:
            return answer(Fault::CannotRead);
        case QPdfDocument::Error::IncorrectPassword:
            return answer(Fault::Locked);
        case QPdfDocument::Error::UnsupportedSecurityScheme:
            return answer(Fault::UnknownLock);
        default:
            return answer(Fault::NoPdf);
        }
        const int pages = document_->pageCount();
        if (pages <= 0 || pages > mostPages) {
            return answer(pages > 0 ? Fault::TooManyPages : Fault::NoPages);
        }
        QByteArray sizes;
        QDataStream out(&sizes, QIODevice::WriteOnly);
        for (int page = 0; page < pages; ++page) {
            out << document_->pagePointSize(page);
        }
        answer(sizes);
    }

    [[nodiscard]] bool isPage(int page) const
    {
        return document_ && page >= 0 && page < document_->pageCount();
    }

    void render(QDataStream& stream)
    {
        qint32 page = -1;
        QSize size;
        bool grey = false;
        stream >> page >> size >> grey;
        const QSizeF points = isPage(page) ? document_->pagePointSize(page) : QSizeF();
        if (points.isEmpty() || !(points.width() <= tallestPage) ||
            !(points.height() <= tallestPage) || size.isEmpty() ||
            qint64{size.width()} * size.height() > mostPixels) {
            return answer(Fault::CannotDraw);
        }
        QPdfDocumentRenderOptions options;
        options.setRenderFlags(QPdfDocumentRenderOptions::RenderFlag::Annotations);
        QImage image = document_->render(page, size, options);
        if (image.isNull()) {
            return answer(Fault::CannotDraw);
        }
        // Where nothing is drawn a page is transparent.
        QImage paper(size, grey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
        if (paper.isNull()) {
            return answer(Fault::CannotDraw);
        }
        flatten(image, paper);
        answer(Fault::None, reinterpret_cast<const char*>(paper.constBits()), paper.sizeInBytes());
    }

    static void flatten(const QImage& from, QImage& paper)
    {
        const bool grey = paper.format() == QImage::Format_Grayscale8;
        for (int y = 0; y < paper.height(); ++y) {
            const auto* pixel = reinterpret_cast<const QRgb*>(from.constScanLine(y));
            uchar* row = paper.scanLine(y);
            for (int x = 0; x < paper.width(); ++x) {
                const QRgb p = pixel[x];
                const int white = 255 - qAlpha(p);
                const QRgb opaque = qAlpha(p) == 255 ? p
                                                     : qRgb(blend(qRed(p), qAlpha(p), white),
                                                            blend(qGreen(p), qAlpha(p), white),
                                                            blend(qBlue(p), qAlpha(p), white));
                if (grey) {
                    row[x] = static_cast<uchar>(qGray(opaque));
                } else {
                    reinterpret_cast<QRgb*>(row)[x] = opaque;
                }
            }
        }
    }
    static int blend(int colour, int alpha, int white) { return (colour * alpha) / 255 + white; }

    void lines(QDataStream& stream)
    {
        qint32 page = -1;
        stream >> page;
        QByteArray found;
        QDataStream out(&found, QIODevice::WriteOnly);
        if (isPage(page)) {
            const QString text = document_->getAllText(page).text();
            qsizetype at = 0;
            for (const QString& line : text.split(u'\n')) {
                const QString start = line.left(lettersOfStart).trimmed();
                const bool digit = std::any_of(start.begin(), start.end(),
                                               [](QChar letter) { return letter.isDigit(); });
                if (digit) {
                    const qsizetype blanks = line.indexOf(start);
                    const QPdfSelection place = document_->getSelectionAtIndex(
                        page, static_cast<int>(at + blanks), static_cast<int>(start.size()));
                    out << start << place.boundingRectangle();
                }
                at += line.size() + 1;
            }
        }
        answer(found);
    }

    QFile input_;
    QFile output_;
    std::unique_ptr<QPdfDocument> document_;
};

} // namespace

int main(int argc, char** argv)
{
#ifdef Q_OS_WIN
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
#elif !defined(__SANITIZE_ADDRESS__)
    // A file made to eat all memory ends the reader instead.
    const rlimit most{rlim_t{3} << 30, rlim_t{3} << 30};
    setrlimit(RLIMIT_AS, &most);
#endif
    const QCoreApplication application(argc, argv);
    Reader().run();
    return 0;
}
