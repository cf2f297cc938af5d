#include "presentation/pptx/pptx_draft.h"

#include "pictures/picture_info.h"
#include "store/errors.h"

#include <QCoreApplication>

#include <cmath>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

Emu exactly(double points)
{
    return std::llround(points * double(emuPerPoint));
}

} // namespace

Emu PptxDraft::emu(double points) const
{
    return rounded(exactly(points));
}

void PptxDraft::setVisible() {}

void PptxDraft::appendBlankSlide()
{
    constexpr size_t usualShapes = 4;
    document_.slides.emplace_back().shapes.reserve(usualShapes);
}

PptxSlide& PptxDraft::currentSlide()
{
    if (document_.slides.empty()) {
        throw Error(Words::tr("The presentation has no slide yet."));
    }
    return document_.slides.back();
}

PptxShape& PptxDraft::shapeAt(int shape)
{
    PptxSlide& slide = currentSlide();
    if (shape < 1 || size_t(shape) > slide.shapes.size()) {
        throw Error(Words::tr("The slide has no shape %1.").arg(shape));
    }
    return slide.shapes[size_t(shape) - 1];
}

void PptxDraft::addTextBox(double left, double top, double width, double height,
                           LongLines longLines)
{
    PptxShape box;
    box.left = emu(left);
    box.top = emu(top);
    box.width = emu(width);
    box.height = emu(height);
    box.longLines = longLines;
    currentSlide().shapes.push_back(std::move(box));
}

void PptxDraft::setShapeText(int shape, const QString& text)
{
    shapeAt(shape).text = text;
}

int PptxDraft::mediaFor(const QString& path)
{
    int& known = mediaByPath_[path];
    if (known == 0) {
        const PictureInfo info = readPictureInfo(path);
        PptxMedia media;
        media.path = path;
        media.bytes = info.uprightJpeg;
        media.format = info.uprightJpeg.isEmpty() ? info.format : QByteArrayLiteral("jpeg");
        media.width = exactly(info.points.width());
        media.height = exactly(info.points.height());
        document_.media.push_back(std::move(media));
        known = int(document_.media.size());
    }
    return known;
}

void PptxDraft::addPicture(const QString& path, double left, double top, double width,
                           double height, const QString& description)
{
    PptxSlide& slide = currentSlide();
    PptxShape picture;
    picture.media = mediaFor(path);
    const PptxMedia& media = document_.media[size_t(picture.media) - 1];
    picture.left = emu(left);
    picture.top = emu(top);
    picture.width = width == ownSize ? rounded(media.width) : emu(width);
    picture.height = height == ownSize ? rounded(media.height) : emu(height);
    picture.description = description;
    slide.shapes.push_back(std::move(picture));
}

void PptxDraft::announce(const DeckFacts& facts)
{
    document_.title = facts.name;
    document_.language = facts.language;
    document_.answerSlides = facts.answerSlides;
}

void PptxDraft::addTitle(double left, double top, double width, double height, double textSize,
                         const QString& text)
{
    addTextBox(left, top, width, height, LongLines::Wrap);
    PptxShape& shape = currentSlide().shapes.back();
    shape.title = true;
    shape.textSize = textSize;
    shape.text = text;
}

void PptxDraft::emphasise(int shape, double textSize)
{
    shapeAt(shape).framed = true;
    shapeAt(shape).textSize = textSize;
}

void PptxDraft::setNotes(const QString& text)
{
    currentSlide().notes = text;
}

void PptxDraft::setAdvance(int seconds)
{
    currentSlide().advance = seconds;
}

QSizeF PptxDraft::pictureSize(const QString& path)
{
    const PptxMedia& media = document_.media[size_t(mediaFor(path)) - 1];
    return {double(media.width) / double(emuPerPoint), double(media.height) / double(emuPerPoint)};
}

void PptxDraft::scaleHeight(int shape, double factor)
{
    PptxShape& target = shapeAt(shape);
    const Emu original =
        target.media == 0 ? target.height : document_.media[size_t(target.media) - 1].height;
    target.height = rounded(std::llround(double(original) * factor));
}

void PptxDraft::scaleWidth(int shape, double factor)
{
    PptxShape& target = shapeAt(shape);
    const Emu original =
        target.media == 0 ? target.width : document_.media[size_t(target.media) - 1].width;
    target.width = rounded(std::llround(double(original) * factor));
}

void PptxDraft::showSlide(int index)
{
    if (index < 1 || size_t(index) > document_.slides.size()) {
        throw Error(Words::tr("The presentation has no slide %1.").arg(index));
    }
}

} // namespace varnholt
