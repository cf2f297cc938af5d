// How an `ImpressDocument` comes from a file.

#include "presentation/impress/impress_document.h"
#include "store/errors.h"

#include <QScopeGuard>
#include <QUrl>

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/drawing/TextHorizontalAdjust.hpp>
#include <com/sun/star/drawing/XDrawPagesSupplier.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <com/sun/star/util/XModifiable.hpp>

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

namespace varnholt {

namespace {

css::beans::PropertyValue argument(const char* name, const Any& value)
{
    return {rtl::OUString::createFromAscii(name), -1, value,
            css::beans::PropertyState_DIRECT_VALUE};
}

} // namespace

void ImpressDocument::load(const QString& path)
{
    const auto& context = connection_.context();
    const Reference<css::frame::XDesktop2> desktop = css::frame::Desktop::create(context);
    const auto url = QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
    const auto arguments = unoSequence<css::beans::PropertyValue>(
        {argument("AsTemplate", Any(true)),
         argument("FilterName", Any(rtl::OUString("Impress MS PowerPoint 2007 XML")))});
    loading_ = true;
    const auto loaded = qScopeGuard([this] { loading_ = false; });
    model_.set(desktop->loadComponentFromURL(toUno(url), "_blank", 0, arguments), UNO_QUERY_THROW);
    if (unwanted_) {
        Reference<css::util::XCloseable>(model_, UNO_QUERY_THROW)->close(true);
        close();
        throw Cancelled();
    }
    pages_ = Reference<css::drawing::XDrawPagesSupplier>(model_, UNO_QUERY_THROW)->getDrawPages();
    slideCount_ = pages_->getCount();
    // It is on no disk.
    Reference<css::util::XModifiable>(model_, UNO_QUERY_THROW)->setModified(true);
}

void ImpressDocument::breakOff()
{
    unwanted_ = true;
    if (!loading_) {
        connection_.breakOff();
    }
}

void ImpressDocument::nameSlides()
{
    for (sal_Int32 slide = 0; slide < slideCount_; ++slide) {
        Reference<css::container::XNamed>(pages_->getByIndex(slide), UNO_QUERY_THROW)
            ->setName(toUno(QStringLiteral("page%1").arg(slide + 1)));
    }
}

void ImpressDocument::setTexts(const std::vector<TextPlace>& texts)
{
    Reference<css::container::XIndexAccess> page;
    sal_Int32 current = -1;
    for (const TextPlace& text : texts) {
        if (text.slide != current) {
            current = text.slide;
            page.set(pages_->getByIndex(current), UNO_QUERY_THROW);
        }
        const Reference<css::beans::XPropertySet> shape(page->getByIndex(text.shape),
                                                        UNO_QUERY_THROW);
        shape->setPropertyValue("FontIndependentLineSpacing", Any(false));
        if (text.title) {
            shape->setPropertyValue("TextWordWrap", Any(false));
        } else if (text.longLines == LongLines::RunOn) {
            shape->setPropertyValue("TextHorizontalAdjust",
                                    Any(css::drawing::TextHorizontalAdjust_LEFT));
        }
    }
}

} // namespace varnholt
