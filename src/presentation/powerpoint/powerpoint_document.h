#pragma once

#include "presentation/powerpoint/automation.h"

#include <string>

namespace varnholt {

/// The calls a build makes, in PowerPoint's own terms. The presentation is always reached as the
/// active one and its shapes through the active window, so that each call acts on what the user
/// would see it act on; no reference to a slide or shape outlives the call it was needed for.
/// Lengths are points. Throws `automation::Failure`.
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

private:
    automation::Object slides();
    automation::Object shapes();
    automation::Object shape(const automation::Value& index);
    void setText(const automation::Object& shape, const std::wstring& text);

    automation::Object application_;

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
    } members_;
};

} // namespace varnholt
