#include "paper/paper_pdf.h"

#include "store/errors.h"
#include "store/save_file.h"

#include <QCoreApplication>

#include <hpdf.h>

#include <algorithm>
#include <memory>
#include <unordered_map>

namespace varnholt {

namespace {

constexpr float lineWidth = 0.75F;

/// What the library behind it can write: characters of the basic plane, no line breaks.
QByteArray printable(const QString& text)
{
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size()) {
            ++i;
        }
        result += c.isSurrogate() ? QChar(QChar::ReplacementCharacter) : c < u' ' ? QChar(u' ') : c;
    }
    return result.toUtf8();
}

float real(double value)
{
    return static_cast<float>(value);
}

class PdfDocument
{
    Q_DECLARE_TR_FUNCTIONS(PaperPdf)

public:
    PdfDocument(const PaperFont& font, const QString& title)
        : pdf_(HPDF_New(nullptr, nullptr))
    {
        if (!pdf_) {
            throw Error(tr("There is not enough memory to make the PDF file."));
        }
        HPDF_SetCompressionMode(doc(), HPDF_COMP_TEXT | HPDF_COMP_METADATA);
        HPDF_UseUTFEncodings(doc());
        HPDF_SetCurrentEncoder(doc(), "UTF-8");
        HPDF_SetInfoAttr(doc(), HPDF_INFO_TITLE, printable(title).constData());
        HPDF_SetInfoAttr(doc(), HPDF_INFO_CREATOR, "Varnholt");
        regular_ = load(font.regularFile);
        bold_ = load(font.boldFile);
        check();
    }

    void addPage(const PaperLayout& layout, const PaperLayout::Page& page, const PaperTest& test)
    {
        HPDF_Page target = HPDF_AddPage(doc());
        HPDF_Page_SetWidth(target, real(layout.width));
        HPDF_Page_SetHeight(target, real(layout.height));
        const auto fromBottom = [&](double top) { return real(layout.height - top); };
        // Behind the pictures.
        addTexts(target, page, true, fromBottom);
        for (const PaperLayout::Picture& picture : page.pictures) {
            const PaperLayout::Rectangle& place = picture.place;
            if (HPDF_Image image = imageFor(test.questions.at(picture.question).picturePath)) {
                HPDF_Page_DrawImage(target, image, real(place.left),
                                    fromBottom(place.top + place.height), real(place.width),
                                    real(place.height));
            }
        }
        addTexts(target, page, false, fromBottom);
        HPDF_Page_SetLineWidth(target, lineWidth);
        for (const PaperLayout::Rectangle& line : page.outlines) {
            if (line.height > 0) {
                HPDF_Page_Rectangle(target, real(line.left), fromBottom(line.top + line.height),
                                    real(line.width), real(line.height));
            } else {
                HPDF_Page_MoveTo(target, real(line.left), fromBottom(line.top));
                HPDF_Page_LineTo(target, real(line.left + line.width), fromBottom(line.top));
            }
            HPDF_Page_Stroke(target);
        }
        check();
    }

    QByteArray bytes()
    {
        HPDF_SaveToStream(doc());
        check();
        QByteArray result(static_cast<qsizetype>(HPDF_GetStreamSize(doc())), Qt::Uninitialized);
        auto size = static_cast<HPDF_UINT32>(result.size());
        HPDF_ReadFromStream(doc(), reinterpret_cast<HPDF_BYTE*>(result.data()), &size);
        result.truncate(size);
        return result;
    }

private:
    struct Free
    {
        void operator()(HPDF_Doc doc) const { HPDF_Free(doc); }
    };

    [[nodiscard]] HPDF_Doc doc() const { return pdf_.get(); }

    void check() const
    {
        const HPDF_STATUS status = HPDF_GetError(doc());
        if (status == HPDF_FAILD_TO_ALLOC_MEM) {
            throw Error(tr("There is not enough memory to make the PDF file."));
        }
        if (status != HPDF_OK) {
            throw Error(tr("The PDF file could not be made (error %1).").arg(status, 0, 16));
        }
    }

    HPDF_Font load(const QString& file)
    {
        const char* name =
            HPDF_LoadTTFontFromFile(doc(), QFile::encodeName(file).constData(), HPDF_TRUE);
        check();
        return HPDF_GetFont(doc(), name, "UTF-8");
    }

    template <typename FromBottom>
    void addTexts(HPDF_Page target, const PaperLayout::Page& page, bool hidden,
                  const FromBottom& fromBottom)
    {
        HPDF_Page_BeginText(target);
        HPDF_Page_SetTextRenderingMode(target, hidden ? HPDF_INVISIBLE : HPDF_FILL);
        for (const PaperLayout::Text& text : page.texts) {
            if (text.hidden == hidden && !text.text.isEmpty()) {
                HPDF_Page_SetFontAndSize(target, text.bold ? bold_ : regular_, real(text.size));
                HPDF_Page_TextOut(target, real(text.left), fromBottom(text.baseline),
                                  printable(text.text).constData());
            }
        }
        HPDF_Page_EndText(target);
    }

    /// Null for a picture that has gone bad since it was measured: its place stays empty.
    HPDF_Image imageFor(const QString& path)
    {
        const auto [known, isNew] = images_.try_emplace(path, nullptr);
        if (isNew) {
            const QByteArray jpeg = ReadPaperPicture(path).jpeg;
            if (!jpeg.isEmpty()) {
                known->second = HPDF_LoadJpegImageFromMem(
                    doc(), reinterpret_cast<const HPDF_BYTE*>(jpeg.constData()),
                    static_cast<HPDF_UINT>(jpeg.size()));
                if (!known->second && HPDF_GetError(doc()) != HPDF_FAILD_TO_ALLOC_MEM) {
                    HPDF_ResetError(doc());
                }
            }
        }
        return known->second;
    }

    std::unique_ptr<std::remove_pointer_t<HPDF_Doc>, Free> pdf_;
    HPDF_Font regular_ = nullptr;
    HPDF_Font bold_ = nullptr;
    std::unordered_map<QString, HPDF_Image> images_;
};

} // namespace

QByteArray MakePaperPdf(const PaperTest& test, const PaperLayout& layout, const PaperFont& font,
                        const PaperProgress& progress)
{
    PdfDocument document(font, test.title);
    int done = 0;
    for (const PaperLayout::Page& page : layout.pages) {
        document.addPage(layout, page, test);
        if (progress) {
            progress(++done, static_cast<int>(layout.pages.size()));
        }
    }
    return document.bytes();
}

void SavePaperPdf(const QString& path, const PaperTest& test, const PaperLayout& layout,
                  const PaperFont& font, const PaperProgress& progress)
{
    SaveFile(path, MakePaperPdf(test, layout, font, progress));
}

} // namespace varnholt
