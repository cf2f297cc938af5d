#include "presentation/impress/impress_document.h"

#include "presentation/slide_text.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QUrl>

#include <com/sun/star/awt/FontWeight.hpp>
#include <com/sun/star/awt/XTopWindow.hpp>
#include <com/sun/star/awt/XWindow2.hpp>
#include <com/sun/star/document/XDocumentPropertiesSupplier.hpp>
#include <com/sun/star/drawing/FillStyle.hpp>
#include <com/sun/star/drawing/LineStyle.hpp>
#include <com/sun/star/drawing/TextFitToSizeType.hpp>
#include <com/sun/star/drawing/TextHorizontalAdjust.hpp>
#include <com/sun/star/drawing/TextVerticalAdjust.hpp>
#include <com/sun/star/drawing/XDrawPagesSupplier.hpp>
#include <com/sun/star/drawing/XDrawView.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/graphic/GraphicProvider.hpp>
#include <com/sun/star/graphic/GraphicType.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/presentation/XPresentationPage.hpp>
#include <com/sun/star/style/ParagraphAdjust.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/view/DocumentZoomType.hpp>

#include <algorithm>
#include <cmath>

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

/// 960 x 540 points.
constexpr sal_Int32 pageWidth = 33'867;
constexpr sal_Int32 pageHeight = 19'050;
/// The margins that text boxes have in other presentation programs: 7.2 and 3.6 points.
constexpr sal_Int32 marginAtSides = 254;
constexpr sal_Int32 marginAboveAndBelow = 127;
constexpr sal_Int16 blankLayout = 20;
constexpr sal_Int16 titleLayout = 19;

sal_Int16 layoutOf(const Reference<css::drawing::XDrawPage>& page)
{
    sal_Int16 layout = -1;
    Reference<css::beans::XPropertySet>(page, UNO_QUERY_THROW)->getPropertyValue("Layout") >>=
        layout;
    return layout;
}

} // namespace

void ImpressDocument::close()
{
    shapes_.clear();
    page_.clear();
    pages_.clear();
    lastGraphic_.clear();
    graphics_.clear();
    factory_.clear();
    model_.clear();
    connection_.close();
}

void ImpressDocument::create(const QString& name, const QString& language)
{
    const auto& context = connection_.context();
    const Reference<css::frame::XDesktop2> desktop = css::frame::Desktop::create(context);
    model_.set(desktop->loadComponentFromURL("private:factory/simpress", "_blank", 0, {}),
               UNO_QUERY_THROW);
    factory_.set(model_, UNO_QUERY_THROW);
    graphics_ = css::graphic::GraphicProvider::create(context);
    pages_ = Reference<css::drawing::XDrawPagesSupplier>(model_, UNO_QUERY_THROW)->getDrawPages();
    const Reference<css::beans::XPropertySet> first(pages_->getByIndex(0), UNO_QUERY_THROW);
    first->setPropertyValue("Width", Any(pageWidth));
    first->setPropertyValue("Height", Any(pageHeight));
    if (!name.isEmpty()) {
        Reference<css::document::XDocumentPropertiesSupplier>(model_, UNO_QUERY_THROW)
            ->getDocumentProperties()
            ->setTitle(toUno(name));
    }
    locale_ = {toUno(language.section(u'-', 0, 0)), toUno(language.section(u'-', 1, 1)), {}};
}

Reference<css::frame::XController> ImpressDocument::controller()
{
    Reference<css::frame::XController> controller = model_->getCurrentController();
    if (!controller.is() || !controller->getFrame().is()) {
        throw css::lang::DisposedException("no view", model_);
    }
    return controller;
}

void ImpressDocument::show()
{
    const Reference<css::awt::XWindow2> window(controller()->getFrame()->getContainerWindow(),
                                               UNO_QUERY_THROW);
    window->setVisible(true);
    if (!window->isVisible()) {
        throw Error(Words::tr("Impress runs without a screen to show the presentation on."));
    }
}

void ImpressDocument::appendBlankSlide()
{
    // Behind the one a new presentation comes with, which goes only then: a presentation
    // cannot be without slides.
    page_ = pages_->insertNewByIndex(std::max(slideCount_, 1));
    shapes_.clear();
    if (slideCount_ == 0) {
        setsLayout_ = layoutOf(page_) != blankLayout;
        pages_->remove(Reference<css::drawing::XDrawPage>(pages_->getByIndex(0), UNO_QUERY_THROW));
    }
    if (setsLayout_) {
        Reference<css::beans::XPropertySet>(page_, UNO_QUERY_THROW)
            ->setPropertyValue("Layout", Any(blankLayout));
    }
    ++slideCount_;
}

ImpressDocument::Shape& ImpressDocument::shapeAt(int shape)
{
    if (shape < 1 || size_t(shape) > shapes_.size()) {
        throw Error(Words::tr("The slide has no shape %1.").arg(shape));
    }
    return shapes_[size_t(shape) - 1];
}

void ImpressDocument::addShape(const char* service, const HundredthMm& box, const Names& names,
                               const Values& values)
{
    if (!page_.is()) {
        throw Error(Words::tr("The presentation has no slide yet."));
    }
    const Reference<css::drawing::XShape> shape(
        factory_->createInstance(rtl::OUString::createFromAscii(service)), UNO_QUERY_THROW);
    // All of it before the shape is on the slide: an empty text box that may still grow would
    // shrink there to one line, and each later change would be painted.
    Reference<css::beans::XMultiPropertySet>(shape, UNO_QUERY_THROW)
        ->setPropertyValues(names, values);
    shape->setPosition({box.left, box.top});
    shape->setSize({box.width, box.height});
    page_->add(shape);
    const css::awt::Size size(box.width, box.height);
    shapes_.push_back({shape, size, size});
}

void ImpressDocument::addTextBox(const HundredthMm& box, LongLines longLines)
{
    if (longLines == LongLines::RunOn) {
        addLine(box);
        return;
    }
    // In the order of the alphabet, as a set of several properties has to be.
    const Names names =
        unoSequence<rtl::OUString>({"TextAutoGrowHeight", "TextLeftDistance", "TextLowerDistance",
                                    "TextRightDistance", "TextUpperDistance"});
    const Values values = unoSequence({Any(false), Any(marginAtSides), Any(marginAboveAndBelow),
                                       Any(marginAtSides), Any(marginAboveAndBelow)});
    addShape("com.sun.star.drawing.TextShape", box, names, values);
}

void ImpressDocument::addLine(const HundredthMm& box)
{
    // A text shape that does not wrap would change its width with the text; a shape of its own
    // form, invisible like a text shape's frame, keeps it.
    const Names names = unoSequence<rtl::OUString>(
        {"FillStyle", "LineStyle", "TextAutoGrowHeight", "TextAutoGrowWidth",
         "TextHorizontalAdjust", "TextLeftDistance", "TextLowerDistance", "TextRightDistance",
         "TextUpperDistance", "TextVerticalAdjust", "TextWordWrap"});
    const Values values = unoSequence(
        {Any(css::drawing::FillStyle_NONE), Any(css::drawing::LineStyle_NONE), Any(false),
         Any(false), Any(css::drawing::TextHorizontalAdjust_LEFT), Any(marginAtSides),
         Any(marginAboveAndBelow), Any(marginAtSides), Any(marginAboveAndBelow),
         Any(css::drawing::TextVerticalAdjust_TOP), Any(false)});
    addShape("com.sun.star.drawing.CustomShape", box, names, values);
}

void ImpressDocument::setText(int shape, const QString& text)
{
    Reference<css::text::XText>(shapeAt(shape).shape, UNO_QUERY_THROW)
        ->setString(toUno(slideParagraphs(text).join(u'\n')));
    if (!locale_.Language.isEmpty()) {
        Reference<css::beans::XPropertySet>(shapeAt(shape).shape, UNO_QUERY_THROW)
            ->setPropertyValue("CharLocale", Any(locale_));
    }
}

void ImpressDocument::addTitle(const HundredthMm& box, double textSize, const QString& text)
{
    if (!page_.is()) {
        throw Error(Words::tr("The presentation has no slide yet."));
    }
    Reference<css::beans::XPropertySet>(page_, UNO_QUERY_THROW)
        ->setPropertyValue("Layout", Any(titleLayout));
    // The layout has brought its placeholder along.
    const Reference<css::drawing::XShape> title(page_->getByIndex(0), UNO_QUERY_THROW);
    const css::awt::Size size(box.width, box.height);
    shapes_.push_back({title, size, size});
    setText(static_cast<int>(shapes_.size()), text);
    Reference<css::beans::XMultiPropertySet>(title, UNO_QUERY_THROW)
        ->setPropertyValues(
            unoSequence<rtl::OUString>({"CharHeight", "ParaAdjust", "TextAutoGrowHeight",
                                        "TextFitToSize", "TextLeftDistance", "TextLowerDistance",
                                        "TextRightDistance", "TextUpperDistance",
                                        "TextVerticalAdjust"}),
            unoSequence({Any(static_cast<float>(textSize)),
                         Any(static_cast<sal_Int16>(css::style::ParagraphAdjust_LEFT)), Any(false),
                         Any(css::drawing::TextFitToSizeType_NONE), Any(marginAtSides),
                         Any(marginAboveAndBelow), Any(marginAtSides), Any(marginAboveAndBelow),
                         Any(css::drawing::TextVerticalAdjust_CENTER)}));
    title->setPosition({box.left, box.top});
    title->setSize(size);
}

void ImpressDocument::emphasise(int shape, double textSize)
{
    constexpr sal_Int32 white = 0xFFFFFF;
    constexpr sal_Int32 blue = 0x2F6DA8;
    constexpr sal_Int32 lineWidth = 53;
    Reference<css::beans::XMultiPropertySet>(shapeAt(shape).shape, UNO_QUERY_THROW)
        ->setPropertyValues(
            unoSequence<rtl::OUString>({"CharHeight", "CharWeight", "FillColor", "FillStyle",
                                        "LineColor", "LineStyle", "LineWidth",
                                        "TextVerticalAdjust"}),
            unoSequence({Any(static_cast<float>(textSize)), Any(css::awt::FontWeight::BOLD),
                         Any(white), Any(css::drawing::FillStyle_SOLID), Any(blue),
                         Any(css::drawing::LineStyle_SOLID), Any(lineWidth),
                         Any(css::drawing::TextVerticalAdjust_CENTER)}));
}

void ImpressDocument::setNotes(const QString& text)
{
    const Reference<css::drawing::XDrawPage> notes =
        Reference<css::presentation::XPresentationPage>(page_, UNO_QUERY_THROW)->getNotesPage();
    // The slide's image comes first, the text second.
    Reference<css::text::XText>(notes->getByIndex(1), UNO_QUERY_THROW)
        ->setString(toUno(slideParagraphs(text).join(u'\n')));
}

void ImpressDocument::setAdvance(int seconds)
{
    constexpr sal_Int32 byItself = 1;
    const Reference<css::beans::XPropertySet> page(page_, UNO_QUERY_THROW);
    page->setPropertyValue("Change", Any(byItself));
    page->setPropertyValue("Duration", Any(sal_Int32(seconds)));
}

void ImpressDocument::addPicture(const QString& path, const HundredthMm& box,
                                 const QString& description)
{
    if (!lastGraphic_.is() || path != lastPath_) {
        const auto url = QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
        const auto source = unoSequence<css::beans::PropertyValue>(
            {{"URL", -1, Any(toUno(url)), css::beans::PropertyState_DIRECT_VALUE}});
        lastGraphic_ = graphics_->queryGraphic(source);
        lastPath_ = path;
    }
    // What cannot be read comes back as nothing or as an empty picture.
    if (!lastGraphic_.is() || lastGraphic_->getType() == css::graphic::GraphicType::EMPTY) {
        lastGraphic_.clear();
        throw Error(Words::tr("Impress cannot read the picture \"%1\".").arg(path));
    }
    addShape("com.sun.star.drawing.GraphicObjectShape", box,
             unoSequence<rtl::OUString>({"Description", "Graphic"}),
             unoSequence({Any(toUno(description)), Any(lastGraphic_)}));
}

void ImpressDocument::resize(Shape& shape, const css::awt::Size& size)
{
    // Nearly always it has that size already, and a call is a round trip.
    if (size.Width != shape.size.Width || size.Height != shape.size.Height) {
        shape.shape->setSize(size);
        shape.size = size;
    }
}

void ImpressDocument::scaleHeight(int shape, double factor)
{
    Shape& target = shapeAt(shape);
    resize(target, {target.size.Width, sal_Int32(std::lround(target.original.Height * factor))});
}

void ImpressDocument::scaleWidth(int shape, double factor)
{
    Shape& target = shapeAt(shape);
    resize(target, {sal_Int32(std::lround(target.original.Width * factor)), target.size.Height});
}

void ImpressDocument::choose(int index)
{
    if (index < 1 || index > slideCount_) {
        throw Error(Words::tr("The presentation has no slide %1.").arg(index));
    }
    page_.set(pages_->getByIndex(index - 1), UNO_QUERY_THROW);
    shapes_.clear();
}

void ImpressDocument::showCurrentSlide()
{
    const Reference<css::frame::XController> view = controller();
    if (page_.is()) {
        Reference<css::drawing::XDrawView>(view, UNO_QUERY_THROW)->setCurrentPage(page_);
    }
    // The page is larger than the one the window was made for. Last, or it has no effect.
    Reference<css::beans::XPropertySet>(view, UNO_QUERY_THROW)
        ->setPropertyValue("ZoomType", Any(css::view::DocumentZoomType::ENTIRE_PAGE));
    Reference<css::awt::XTopWindow>(view->getFrame()->getContainerWindow(), UNO_QUERY_THROW)
        ->toFront();
}

} // namespace varnholt
