#pragma once

#include <QString>

#include <com/sun/star/uno/Sequence.hxx>
#include <rtl/ustring.hxx>
#include <sal/types.h>

#include <initializer_list>

namespace com::sun::star {}
namespace css = com::sun::star;

namespace varnholt {

inline rtl::OUString toUno(const QString& text)
{
    return rtl::OUString(reinterpret_cast<const sal_Unicode*>(text.utf16()),
                         static_cast<sal_Int32>(text.size()));
}

inline QString fromUno(const rtl::OUString& text)
{
    return QString(reinterpret_cast<const QChar*>(text.getStr()), text.getLength());
}

template <typename Item>
css::uno::Sequence<Item> unoSequence(std::initializer_list<Item> items)
{
    return css::uno::Sequence<Item>(items.begin(), static_cast<sal_Int32>(items.size()));
}

} // namespace varnholt
