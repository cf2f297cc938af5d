// The program that has an office ready before it is needed: it starts one, unless one runs, waits
// for the end of its input, and ends what it started if nothing is open in there. The input ends
// when the program that runs this one has no more use for it, has ended or was killed.
//
// Arguments: the name of the pipe, the program (empty for the usual one), the limits of
// `ImpressSettings` in milliseconds, and the office's own arguments.

#include "presentation/impress/office_connection.h"
#include "presentation/impress/office_process.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QThread>
#include <QUuid>

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <com/sun/star/util/theMacroExpander.hpp>

#include <condition_variable>
#include <mutex>
#include <thread>

#include <unistd.h>

using namespace varnholt;
using css::uno::Reference;

namespace {

/// So long the office may take to answer when it is no longer wanted, and to be given up then.
constexpr std::chrono::seconds patience{90};
constexpr std::chrono::seconds lastMoment{3};
constexpr int pollEveryMs = 50;
constexpr int endLimitMs = 20'000;
constexpr char markName[] = "VARNHOLT_OFFICE_START";

/// What the other thread knows of the input.
class Input
{
public:
    /// Until it has ended.
    void wait()
    {
        std::unique_lock lock(mutex_);
        ended_.wait(lock, [this] { return over_; });
    }
    [[nodiscard]] bool isOver()
    {
        const std::lock_guard lock(mutex_);
        return over_;
    }
    /// Reads to its end, which may be a long way off.
    void read()
    {
        char unwanted = 0;
        while (::read(STDIN_FILENO, &unwanted, 1) > 0) {
        }
        const std::lock_guard lock(mutex_);
        over_ = true;
        ended_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable ended_;
    bool over_ = false;
};

/// Whether it is the office that was started with this mark in its environment.
bool hasMark(const OfficeConnection& office, const QString& mark)
{
    const auto expander = css::util::theMacroExpander::get(office.context());
    return fromUno(expander->expandMacros(toUno(u'$' + QLatin1String(markName)))) == mark;
}

/// Impress is a part of the office that it loads when a presentation is opened first.
void loadImpress(const OfficeConnection& office)
{
    const auto desktop = css::frame::Desktop::create(office.context());
    const auto hidden = unoSequence<css::beans::PropertyValue>(
        {{"Hidden", -1, css::uno::Any(true), css::beans::PropertyState_DIRECT_VALUE}});
    const Reference<css::util::XCloseable> presentation(
        desktop->loadComponentFromURL("private:factory/simpress", "_blank", 0, hidden),
        css::uno::UNO_QUERY_THROW);
    presentation->close(true);
}

/// Ends the office unless something is open in it.
void endIdle(const ImpressSettings& settings, const QString& mark, OfficeProcess& process)
{
    OfficeLock lock(settings);
    while (!lock.tryLock()) {
    }
    OfficeConnection office;
    if (!office.reopen(settings) || !hasMark(office, mark)) {
        return;
    }
    const auto desktop = css::frame::Desktop::create(office.context());
    if (desktop->getComponents()->createEnumeration()->hasMoreElements() ||
        desktop->getFrames()->getCount() > 0) {
        return;
    }
    try {
        if (!desktop->terminate()) {
            return;
        }
    } catch (const css::lang::DisposedException&) {
        // It was quicker than its answer.
    }
    // Whoever wants one must not meet this one. One that was just starting finishes that first.
    office.close();
    for (int waited = 0; waited < endLimitMs && process.isRunning(); waited += pollEveryMs) {
        QThread::msleep(pollEveryMs);
    }
    process.end();
}

void haveReady(const ImpressSettings& settings, const QString& mark, OfficeConnection& office,
               Input& input)
{
    office.open(settings);
    if (office.process() == nullptr || !hasMark(office, mark)) {
        return;
    }
    if (!input.isOver()) {
        loadImpress(office);
    }
    office.close();
    input.wait();
    endIdle(settings, mark, *office.process());
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    constexpr int ownArguments = 4;
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() < ownArguments) {
        return 2;
    }
    // What a terminal sends to the program that runs this one is not meant for this one.
    setsid();
    const QString mark = QUuid::createUuid().toString(QUuid::Id128);
    ImpressSettings settings;
    settings.pipe = arguments.at(0);
    settings.program = arguments.at(1);
    settings.startLimitMs = arguments.at(2).toInt();
    settings.handOverMs = arguments.at(3).toInt();
    settings.arguments = arguments.mid(ownArguments);
    settings.environment = QStringList{QLatin1String(markName) + u'=' + mark};

    Input input;
    OfficeConnection office;
    // An office that never answers blocks whoever asks it.
    std::thread([&] {
        input.read();
        std::this_thread::sleep_for(patience);
        office.breakOff();
        std::this_thread::sleep_for(lastMoment);
        _exit(1);
    }).detach();
    int result = 0;
    try {
        haveReady(settings, mark, office, input);
    } catch (const std::exception&) {
        result = 1;
    } catch (const css::uno::Exception&) {
        result = 1;
    }
    // Without the office's exit handlers, which are not made for a process with a thread left.
    _exit(result);
}
