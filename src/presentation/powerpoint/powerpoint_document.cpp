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
constexpr std::int32_t ppLayoutTitleOnly = 11;
constexpr std::int32_t msoThemeColorAccent1 = 5;
constexpr std::int32_t msoThemeColorBackground1 = 14;

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

Object PowerPointDocument::slideRange()
{
    return application_.get(members_.activeWindow).get(members_.selection).get(members_.slideRange);
}

Object PowerPointDocument::shapes()
{
    return slideRange().get(members_.shapes);
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

Object PowerPointDocument::setText(const Object& shape, const std::wstring& text)
{
    Object range = shape.get(members_.textFrame).get(members_.textRange);
    range.put(members_.text, Value(text));
    if (language_ != 0) {
        range.put(members_.languageId, Value(language_));
    }
    return range;
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

void PowerPointDocument::describe(const std::wstring& name, std::int32_t language)
{
    application_.get(members_.activePresentation)
        .get(members_.properties)
        .get(members_.property, Value(std::wstring(L"Title")))
        .put(members_.propertyValue, Value(name));
    language_ = language;
}

void PowerPointDocument::addTitle(float left, float top, float width, float height, float textSize,
                                  const std::wstring& text)
{
    const Object slide = slideRange();
    slide.put(members_.layout, Value(ppLayoutTitleOnly));
    const Object title = slide.get(members_.shapes).get(members_.title);
    title.put(members_.left, Value(left));
    title.put(members_.top, Value(top));
    title.put(members_.width, Value(width));
    title.put(members_.height, Value(height));
    setText(title, text).get(members_.font).put(members_.fontSize, Value(textSize));
}

void PowerPointDocument::emphasise(std::int32_t index, float textSize)
{
    constexpr float lineWidth = 1.5F;
    const Object box = shape(Value(index));
    // The colours that go with each other in any theme, a dark one included.
    const Object fill = box.get(members_.fill);
    fill.put(members_.fillVisible, Value(msoTrue));
    fill.get(members_.fillColour).put(members_.themeColour, Value(msoThemeColorBackground1));
    const Object line = box.get(members_.line);
    line.put(members_.lineVisible, Value(msoTrue));
    line.get(members_.lineColour).put(members_.themeColour, Value(msoThemeColorAccent1));
    line.put(members_.lineWeight, Value(lineWidth));
    const Object font = box.get(members_.textFrame).get(members_.textRange).get(members_.font);
    font.put(members_.fontBold, Value(msoTrue));
    font.put(members_.fontSize, Value(textSize));
}

void PowerPointDocument::setNotes(const std::wstring& text)
{
    // The slide's image comes first, the text second.
    constexpr std::int32_t notesBody = 2;
    setText(slideRange()
                .get(members_.notesPage)
                .get(members_.shapes)
                .get(members_.placeholders)
                .get(members_.placeholder, Value(notesBody)),
            text);
}

void PowerPointDocument::setAdvance(float seconds)
{
    const Object transition = slideRange().get(members_.transition);
    transition.put(members_.advanceOnTime, Value(msoTrue));
    transition.put(members_.advanceTime, Value(seconds));
}

} // namespace varnholt
