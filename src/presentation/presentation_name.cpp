#include "presentation/presentation_name.h"

namespace varnholt {

QString PresentationName(const QString& of, QDate day)
{
    const QString date = day.toString(Qt::ISODate);
    const QString name = of.simplified();
    return name.isEmpty() ? date : name + u' ' + date;
}

} // namespace varnholt
