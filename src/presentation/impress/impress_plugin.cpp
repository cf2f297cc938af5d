#include "presentation/impress/impress_plugin.h"

#include "presentation/presentation_program.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

QString findPlugin()
{
    const QString own = QCoreApplication::applicationDirPath();
    for (const char* folder : {"/plugins/", "/../lib/varnholt/plugins/"}) {
        const QDir plugins(own + QLatin1String(folder));
        // Systems differ in how the names of libraries end.
        const QStringList found =
            plugins.entryList({QStringLiteral("varnholt_impress.*")}, QDir::Files);
        if (!found.isEmpty()) {
            return plugins.filePath(found.first());
        }
    }
    return {};
}

} // namespace

ImpressPlugin& ImpressPlugin::instance()
{
    static ImpressPlugin plugin;
    return plugin;
}

ImpressPlugin::ImpressPlugin()
{
    const QString path = findPlugin();
    if (path.isEmpty()) {
        reason_ = Words::tr("This program was installed without its part for Impress.");
        return;
    }
    // Never unloaded: the office suite's libraries keep threads and exit handlers.
    QLibrary library(path);
    library.setLoadHints(QLibrary::PreventUnloadHint);
    entry_ = reinterpret_cast<ImpressEntry>(library.resolve(impressEntryName));
    if (entry_ == nullptr) {
        reason_ = Words::tr("Impress is not installed, or not one that fits this program "
                            "(%1).")
                      .arg(library.errorString());
    }
}

std::unique_ptr<PresentationProgram> ImpressPlugin::start(const ImpressSettings& settings) const
{
    if (entry_ == nullptr) {
        throw Error(reason_);
    }
    return std::unique_ptr<PresentationProgram>(entry_(settings));
}

} // namespace varnholt
