#pragma once

#include "presentation/impress/office_connection.h"
#include "presentation/presentation_program.h"

#include <com/sun/star/beans/XMultiPropertySet.hpp>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/drawing/XDrawPages.hpp>
#include <com/sun/star/drawing/XShape.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/graphic/XGraphic.hpp>
#include <com/sun/star/graphic/XGraphicProvider.hpp>
#include <com/sun/star/lang/Locale.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>

#include <atomic>
#include <vector>

namespace varnholt {

/// Positions and sizes as the office counts them: whole hundredths of a millimetre.
struct HundredthMm
{
    sal_Int32 left = 0;
    sal_Int32 top = 0;
    sal_Int32 width = 0;
    sal_Int32 height = 0;
};

/// A text of a presentation; slides and their shapes count from 0.
struct TextPlace
{
    sal_Int32 slide = 0;
    sal_Int32 shape = 0;
    LongLines longLines = LongLines::Wrap;
    bool title = false;
};

/// A presentation in Impress, and all the calls that lead to it. Everything here blocks and
/// throws UNO's exceptions; `ImpressProgram` calls it from a worker and translates them.
class ImpressDocument
{
public:
    void open(const ImpressSettings& settings) { connection_.open(settings); }
    void close();
    /// From another thread. A file that the office is opening is not broken off, since an office
    /// was seen to hang after that; it is closed when it is open.
    void breakOff();

    /// `name` and `language` (such as "en-GB") may be empty.
    void create(const QString& name, const QString& language);
    /// Opens the slides of a .pptx file as a presentation without a file, changed.
    void load(const QString& path);
    /// Gives slides the names that new ones have; those of a .pptx are called after their titles.
    void nameSlides();
    /// Sets texts as `addTextBox` and `addTitle` do, where no .pptx can say it.
    void setTexts(const std::vector<TextPlace>& texts);
    /// Throws `Error` when there is no screen the window could be on.
    void show();
    void appendBlankSlide();
    void addTextBox(const HundredthMm& box, LongLines longLines);
    void setText(int shape, const QString& text);
    void addPicture(const QString& path, const HundredthMm& box, const QString& description);
    /// The slide's title placeholder; before all other shapes.
    void addTitle(const HundredthMm& box, double textSize, const QString& text);
    void emphasise(int shape, double textSize);
    void setNotes(const QString& text);
    void setAdvance(int seconds);
    /// Scales relative to the size the shape was made with.
    void scaleHeight(int shape, double factor);
    void scaleWidth(int shape, double factor);
    /// Names the slide to be on the screen in the end. Nothing may be added after that.
    void choose(int index);
    /// Brings the chosen slide to the screen, or the last one where none was chosen.
    void showCurrentSlide();

private:
    using Names = css::uno::Sequence<rtl::OUString>;
    using Values = css::uno::Sequence<css::uno::Any>;

    struct Shape
    {
        css::uno::Reference<css::drawing::XShape> shape;
        css::awt::Size original;
        css::awt::Size size;
    };

    /// A box whose text does not wrap.
    void addLine(const HundredthMm& box);
    void addShape(const char* service, const HundredthMm& box, const Names& names,
                  const Values& values);
    css::uno::Reference<css::frame::XController> controller();
    Shape& shapeAt(int shape);
    static void resize(Shape& shape, const css::awt::Size& size);

    OfficeConnection connection_;
    std::atomic<bool> loading_ = false;
    std::atomic<bool> unwanted_ = false;
    css::uno::Reference<css::frame::XModel> model_;
    css::uno::Reference<css::lang::XMultiServiceFactory> factory_;
    css::uno::Reference<css::graphic::XGraphicProvider> graphics_;
    css::uno::Reference<css::drawing::XDrawPages> pages_;
    css::uno::Reference<css::drawing::XDrawPage> page_;
    /// Of the current slide, by position.
    std::vector<Shape> shapes_;
    int slideCount_ = 0;
    /// No country and no language where texts are to have none.
    css::lang::Locale locale_;
    QString lastPath_;
    css::uno::Reference<css::graphic::XGraphic> lastGraphic_;
    /// Whether new slides come with a layout other than the blank one.
    bool setsLayout_ = false;
};

} // namespace varnholt
