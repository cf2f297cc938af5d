#pragma once

#include "presentation/powerpoint/automation.h"

#include <string>

namespace varnholt {

/// The calls a build makes, in PowerPoint's own terms. The presentation is always reached as the
/// active one and its shapes through the active window, so that each call acts on what the user
/// would see it act on; no reference to a slide or shape outlives the call it was needed for.
/// Lengths are points. The first calls are those of every build, in the order and with the
/// arguments that are expected of it; what comes after `selectSlide` is for what a teacher asked
/// for beyond. Throws `automation::Failure`.
class PowerPointDocument
{
public:
    static constexpr const wchar_t* className = L"powerpoint.application";

    /// Starts PowerPoint, or attaches to the one that runs.
    explicit PowerPointDocument(automation::Patience patience);

    void addPresentation();
    void show();
    void appendBlankSlide();
    void addTextBox(float left, float top, float width, float height);
    /// Paragraphs are separated by carriage returns. A counted `shape` is given as 32 bits, a
    /// fixed one as 16.
    void setText(std::int32_t shape, const std::wstring& text);
    void setText(std::int16_t shape, const std::wstring& text);
    /// `path` is absolute, with backslashes.
    void addPicture(const std::wstring& path, float left, float top, float width, float height,
                    const std::wstring& description);
    void scaleHeight(std::int32_t shape, float factor);
    void scaleWidth(std::int32_t shape, float factor);
    void selectSlide(std::int32_t index);

    /// What the presentation is called, and the language that texts are in from now on, by its
    /// number in Windows; 0 for one that is not told.
    void describe(const std::wstring& name, std::int32_t language);
    /// Becomes shape 1 of the current slide, which has to be empty.
    void addTitle(float left, float top, float width, float height, float textSize,
                  const std::wstring& text);
    void emphasise(std::int32_t shape, float textSize);
    void setNotes(const std::wstring& text);
    void setAdvance(float seconds);

private:
    automation::Object slideRange();
    automation::Object slides();
    automation::Object shapes();
    automation::Object shape(const automation::Value& index);
    automation::Object setText(const automation::Object& shape, const std::wstring& text);

    automation::Object application_;
    std::int32_t language_ = 0;

    // Classes share names but not numbers, hence one entry for each class that is asked.
    struct Members
    {
        using Member = automation::Member;
        Member presentations{L"Presentations"};
        Member addPresentation{L"Add"};
        Member visible{L"Visible"};
        Member activePresentation{L"ActivePresentation"};
        Member slides{L"Slides"};
        Member slideCount{L"Count"};
        Member addSlide{L"Add"};
        Member slide{L"Item"};
        Member select{L"Select"};
        Member activeWindow{L"ActiveWindow"};
        Member selection{L"Selection"};
        Member slideRange{L"SlideRange"};
        Member shapes{L"Shapes"};
        Member shape{L"Item"};
        Member addTextbox{L"AddTextbox"};
        Member addPicture{L"AddPicture"};
        Member textFrame{L"TextFrame"};
        Member textRange{L"TextRange"};
        Member text{L"Text"};
        Member alternativeText{L"AlternativeText"};
        Member scaleHeight{L"ScaleHeight"};
        Member scaleWidth{L"ScaleWidth"};
        Member properties{L"BuiltInDocumentProperties"};
        Member property{L"Item"};
        Member propertyValue{L"Value"};
        Member languageId{L"LanguageID"};
        Member layout{L"Layout"};
        Member title{L"Title"};
        Member left{L"Left"};
        Member top{L"Top"};
        Member width{L"Width"};
        Member height{L"Height"};
        Member font{L"Font"};
        Member fontSize{L"Size"};
        Member fontBold{L"Bold"};
        Member fill{L"Fill"};
        Member fillVisible{L"Visible"};
        Member fillColour{L"ForeColor"};
        Member line{L"Line"};
        Member lineVisible{L"Visible"};
        Member lineColour{L"ForeColor"};
        Member lineWeight{L"Weight"};
        Member themeColour{L"ObjectThemeColor"};
        Member notesPage{L"NotesPage"};
        Member placeholders{L"Placeholders"};
        Member placeholder{L"Item"};
        Member transition{L"SlideShowTransition"};
        Member advanceOnTime{L"AdvanceOnTime"};
        Member advanceTime{L"AdvanceTime"};
    } members_;
};

} // namespace varnholt
