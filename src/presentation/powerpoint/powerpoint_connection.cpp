#include "presentation/powerpoint/powerpoint_connection.h"

#include "presentation/powerpoint/powerpoint_document.h"
#include "presentation/presentation_program.h"

#include <QCoreApplication>

#include <objbase.h>

#include <thread>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

constexpr int farewellMs = 3000;
constexpr std::chrono::milliseconds betweenTries(50);

/// `reporter` is who gave the description.
[[noreturn]] void raise(const automation::Failure& failure, const QString& reporter)
{
    if (failure.isGone()) {
        throw ProgramGone(Words::tr("PowerPoint, or the presentation in it, was closed."));
    }
    if (failure.isBusy()) {
        throw ProgramGone(Words::tr("PowerPoint is busy. Please look whether one of its windows "
                                    "waits for an answer, and try again."));
    }
    throw Error(
        Words::tr("%1 reported: %2").arg(reporter, QString::fromStdWString(failure.description())));
}

} // namespace

PowerPointConnection::PowerPointConnection(std::chrono::milliseconds busyLimit)
    : document_(std::make_shared<std::unique_ptr<PowerPointDocument>>())
    , givenUp_(std::make_shared<std::atomic<bool>>(false))
    , keepGoing_(std::make_shared<KeepGoing>())
    , busyLimit_(busyLimit)
    , worker_([keepGoing = keepGoing_] { return !*keepGoing || (*keepGoing)(); },
              [givenUp = givenUp_] { *givenUp = true; })
{
    // The multi-threaded apartment: a thread with one of its own would have to look after a
    // message queue between two calls.
    worker_.run([] { CoInitializeEx(nullptr, COINIT_MULTITHREADED); });
}

PowerPointConnection::~PowerPointConnection()
{
    worker_.runLast(
        [document = document_] {
            document->reset();
            CoUninitialize();
        },
        farewellMs);
}

void PowerPointConnection::connect(const KeepGoing& keepGoing)
{
    *keepGoing_ = keepGoing;
    worker_.run([document = document_, givenUp = givenUp_, limit = busyLimit_] {
        try {
            *document = std::make_unique<PowerPointDocument>(
                [givenUp, limit](std::chrono::milliseconds refusing) {
                    std::this_thread::sleep_for(betweenTries);
                    return !*givenUp && refusing < limit;
                });
        } catch (const automation::Failure& failure) {
            raise(failure, QStringLiteral("Windows"));
        }
    });
}

void PowerPointConnection::run(std::function<void(PowerPointDocument&)> task)
{
    worker_.run([document = document_, task = std::move(task)] {
        try {
            task(**document);
        } catch (const automation::Failure& failure) {
            raise(failure, QStringLiteral("PowerPoint"));
        }
    });
}

} // namespace varnholt
