#include "words/words.h"

#include <QCoreApplication>
#include <QTranslator>

namespace varnholt {

void InstallWords(QCoreApplication& application)
{
    auto* plurals = new QTranslator(&application);
    if (plurals->load(QStringLiteral(":/words/plurals_en.qm"))) {
        QCoreApplication::installTranslator(plurals);
    }
}

} // namespace varnholt
