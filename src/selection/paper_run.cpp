#include "selection/paper_run.h"

#include "selection/test_record.h"
#include "store/services.h"

#include <QCoreApplication>
#include <QStringList>

#include <utility>

#ifdef VARNHOLT_PAPER
#include "paper/frmPaper.h"
#endif

namespace varnholt {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(RunPaper)
};

} // namespace

void RunPaper([[maybe_unused]] QWidget* window, [[maybe_unused]] Services& services,
              [[maybe_unused]] Library& library, [[maybe_unused]] DrawnTest test,
              [[maybe_unused]] std::int32_t keptTestId)
{
#ifdef VARNHOLT_PAPER
    test.paper.className = test.record.className;
    frmPaper paper(services, std::move(test.paper), window);
    QStringList classes;
    paper.onDone = [&](const PaperTest& done) {
        NewTest record = test.record;
        record.className = done.className.trimmed();
        if (classes.contains(record.className, Qt::CaseInsensitive)) {
            return;
        }
        classes.append(record.className);
        const bool sameClass =
            record.className.compare(test.record.className, Qt::CaseInsensitive) == 0;
        TestRecord made(library, std::move(record), sameClass ? keptTestId : 0);
        made.complete(TestKind::Paper);
        if (!made.failure().isEmpty()) {
            services.messageBoxes->inform(
                Words::tr("Past Tests"),
                Words::tr("The paper is there, but the library cannot remember the test: %1")
                    .arg(made.failure()));
        }
    };
    paper.exec();
#endif
}

} // namespace varnholt
