#include "presentation/powerpoint/powerpoint_document.h"

namespace varnholt {

using automation::Object;
using automation::Value;

namespace {

// Constants of the object model, with their published names.
constexpr std::int32_t msoTrue = -1;
constexpr std::int32_t msoFalse = 0;
constexpr std::int32_t ppLayoutBlank = 12;
constexpr std::int32_t msoTextOrientationHorizontal = 1;
constexpr std::int32_t msoScaleFromTopLeft = 0;

} // namespace

PowerPointDocument::PowerPointDocument(automation::Patience patience)
    : application_(Object::create(className, std::move(patience)))
{}

void PowerPointDocument::addPresentation()
{
    application_.get(members_.presentations).call(members_.addPresentation, {Value(msoTrue)});
}

void PowerPointDocument::show()
{
    application_.put(members_.visible, Value(msoTrue));
}

Object PowerPointDocument::slides()
{
    return application_.get(members_.activePresentation).get(members_.slides);
}

void PowerPointDocument::appendBlankSlide()
{
    const std::int32_t count = slides().getNumber(members_.slideCount);
    slides()
        .call(members_.addSlide, {Value(count + 1), Value(ppLayoutBlank)})
        .call(members_.select);
}

Object PowerPointDocument::shapes()
{
    return application_.get(members_.activeWindow)
        .get(members_.selection)
        .get(members_.slideRange)
        .get(members_.shapes);
}

Object PowerPointDocument::shape(const Value& index)
{
    return shapes().get(members_.shape, index);
}

void PowerPointDocument::addTextBox(float left, float top, float width, float height)
{
    shapes().call(members_.addTextbox, {Value(msoTextOrientationHorizontal), Value(left),
                                        Value(top), Value(width), Value(height)});
}

void PowerPointDocument::setText(const Object& shape, const std::wstring& text)
{
    shape.get(members_.textFrame).get(members_.textRange).put(members_.text, Value(text));
}

void PowerPointDocument::setText(std::int32_t index, const std::wstring& text)
{
    setText(shape(Value(index)), text);
}

void PowerPointDocument::setText(std::int16_t index, const std::wstring& text)
{
    setText(shape(Value(index)), text);
}

void PowerPointDocument::addPicture(const std::wstring& path, float left, float top, float width,
                                    float height, const std::wstring& description)
{
    shapes()
        .call(members_.addPicture, {Value(path), Value(msoFalse), Value(msoTrue), Value(left),
                                    Value(top), Value(width), Value(height)})
        .put(members_.alternativeText, Value(description));
}

void PowerPointDocument::scaleHeight(std::int32_t index, float factor)
{
    shape(Value(index))
        .call(members_.scaleHeight, {Value(factor), Value(msoTrue), Value(msoScaleFromTopLeft)});
}

void PowerPointDocument::scaleWidth(std::int32_t index, float factor)
{
    shape(Value(index))
        .call(members_.scaleWidth, {Value(factor), Value(msoTrue), Value(msoScaleFromTopLeft)});
}

void PowerPointDocument::selectSlide(std::int32_t index)
{
    slides().get(members_.slide, Value(index)).call(members_.select);
}

} // namespace varnholt
