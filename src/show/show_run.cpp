#include "show/show_run.h"

#include "library/Library.h"
#include "show/ShowDesktop.h"
#include "show/ShowMemory.h"
#include "show/frmShow.h"
#include "store/services.h"

#include <QCoreApplication>

#include <utility>

namespace varnholt {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(RunShow)
};

} // namespace

bool RunShow(QWidget* window, Services& services, Library& library, ShowTest test, NewTest record,
             std::int32_t keptTestId)
{
    if (test.items.empty()) {
        services.messageBoxes->inform(Words::tr("No Questions"),
                                      Words::tr("There are no questions selected."));
        return false;
    }
    ShowMemory memory(library, std::move(record), keptTestId);
    const QString obstacle = memory.failure();
    if (!obstacle.isEmpty()) {
        services.messageBoxes->inform(
            Words::tr("Show in Class"),
            Words::tr("%1 The test can be shown, but it will not be remembered.").arg(obstacle));
    }
    // What is shown is often wanted as slides, too.
    const std::shared_ptr<void> prepared = services.presentationPrograms->prepare();
    ShowDesktop desktop;
    frmShow show(services, std::move(test), LoadShowWishes(services.programFolder), memory, desktop,
                 window);
    show.exec();
    if (memory.failure() != obstacle) {
        services.messageBoxes->inform(
            Words::tr("Past Tests"),
            Words::tr("The test has been shown, but the library does not remember all of it: %1")
                .arg(memory.failure()));
    }
    return true;
}

} // namespace varnholt
