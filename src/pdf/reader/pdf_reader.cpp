// The process that reads PDF files for the program: takes requests from its standard input and
// answers on its standard output until there are no more.
#include "pdf/pdf_messages.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QFile>
#include <QImage>
#include <QPdfDocument>
#include <QPdfSelection>

#include <algorithm>
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
        if (image.isNull() || image.format() != QImage::Format_ARGB32) {
            return answer(Fault::CannotDraw);
        }
        const qint64 bytes = grey ? toGrey(image) : onWhite(image);
        answer(Fault::None, reinterpret_cast<const char*>(image.constBits()), bytes);
    }

    /// Where nothing is drawn a page is transparent.
    static QRgb opaque(QRgb pixel)
    {
        if (pixel == 0) {
            return qRgb(255, 255, 255);
        }
        const int alpha = qAlpha(pixel);
        const auto blend = [alpha](int colour) { return colour * alpha / 255 + 255 - alpha; };
        return alpha == 255 ? pixel
                            : qRgb(blend(qRed(pixel)), blend(qGreen(pixel)), blend(qBlue(pixel)));
    }

    /// Both work where the picture lies, since a page is large; how many bytes it has then.
    static qint64 onWhite(QImage& image)
    {
        auto* pixels = reinterpret_cast<QRgb*>(image.bits());
        const qint64 bytes = image.sizeInBytes();
        std::transform(pixels, pixels + bytes / qint64{sizeof(QRgb)}, pixels, opaque);
        return bytes;
    }
    static qint64 toGrey(QImage& image)
    {
        const QSize size = image.size();
        const qsizetype perRow = (size.width() + 3) / 4 * 4;
        uchar* bytes = image.bits();
        for (int y = 0; y < size.height(); ++y) {
            const auto* pixel = reinterpret_cast<const QRgb*>(bytes + image.bytesPerLine() * y);
            uchar* row = bytes + perRow * y;
            std::transform(pixel, pixel + size.width(), row,
                           [](QRgb p) { return static_cast<uchar>(qGray(opaque(p))); });
        }
        return perRow * size.height();
    }

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
