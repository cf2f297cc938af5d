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

#include <future>

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

/// The office works on its windows between two calls, and each call waits for that. Several at a
/// time wait together: with 1000 slides visible that took a third less than one after the other.
template <typename Task>
void inParts(size_t items, const Task& task)
{
    constexpr size_t parts = 4;
    std::vector<std::future<void>> work;
    for (size_t part = 0; part < parts; ++part) {
        work.push_back(
            std::async(std::launch::async, task, items * part / parts, items * (part + 1) / parts));
    }
    for (std::future<void>& done : work) {
        done.get();
    }
}

/// As `addTextBox` and `addTitle` set a text.
void setTextOf(const Reference<css::beans::XMultiPropertySet>& shape, const TextPlace& text)
{
    std::vector<rtl::OUString> names{"FontIndependentLineSpacing"};
    std::vector<Any> values{Any(false)};
    if (text.title) {
        names.emplace_back("TextWordWrap");
        values.emplace_back(false);
    } else if (text.longLines == LongLines::RunOn) {
        names.emplace_back("TextHorizontalAdjust");
        values.emplace_back(css::drawing::TextHorizontalAdjust_LEFT);
    }
    shape->setPropertyValues(css::uno::Sequence(names.data(), sal_Int32(names.size())),
                             css::uno::Sequence(values.data(), sal_Int32(values.size())));
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
    inParts(size_t(slideCount_), [this](size_t from, size_t to) {
        for (size_t slide = from; slide < to; ++slide) {
            Reference<css::container::XNamed>(pages_->getByIndex(sal_Int32(slide)), UNO_QUERY_THROW)
                ->setName(toUno(QStringLiteral("page%1").arg(slide + 1)));
        }
    });
}

void ImpressDocument::setTexts(const std::vector<TextPlace>& texts)
{
    inParts(texts.size(), [&](size_t from, size_t to) {
        Reference<css::container::XIndexAccess> page;
        sal_Int32 current = -1;
        for (size_t i = from; i < to; ++i) {
            const TextPlace& text = texts[i];
            if (text.slide != current) {
                current = text.slide;
                page.set(pages_->getByIndex(current), UNO_QUERY_THROW);
            }
            setTextOf(Reference<css::beans::XMultiPropertySet>(page->getByIndex(text.shape),
                                                               UNO_QUERY_THROW),
                      text);
        }
    });
}

} // namespace varnholt
