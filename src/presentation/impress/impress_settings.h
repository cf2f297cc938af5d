#pragma once

#include "store/services.h"

#include <QString>
#include <QStringList>

namespace varnholt {

/// How the plug-in reaches the office suite. Handed across the plug-in's border, so host and
/// plug-in must come from one build.
struct ImpressSettings
{
    /// The program that starts the office; empty for the one the plug-in was built against.
    QString program;
    /// More arguments for it, for example a profile of its own ("-env:UserInstallation=...").
    QStringList arguments;
    /// Environment entries for it, "NAME=value".
    QStringList environment;
    /// The name of the pipe that the office is to be reached by; empty for one of this run's own.
    QString pipe;
    /// Called while the office is waited for, about 50 times a second; false gives up. May be
    /// empty.
    KeepGoing keepGoing;
    /// An office that has not answered after this does not start.
    int startLimitMs = 90'000;
    /// The starting program ends at once where it hands over to an office that runs; how long
    /// that one may take then.
    int handOverMs = 5000;
    /// From so many slides on the office opens a file of them instead of being called for each
    /// shape. Milliseconds by calls and by file, the office running, on a machine busy with other
    /// work: about 10 slides 2830 and 2310 (median of 5 runs), 30 slides 3832 and 2409, 53 slides
    /// 14,300 and 6597 (one run each); more slides were not compared.
    /// Below 100 a file gains too little for what it takes away: to see the slides come, and to
    /// stop at once.
    int manySlides = 100;
};

/// The plug-in's one entry, exported as `impressEntryName`: a connected Impress. Throws `Error`
/// when the office cannot be reached and `Cancelled` when the user stopped waiting.
using ImpressEntry = PresentationProgram* (*)(const ImpressSettings& settings);

inline constexpr char impressEntryName[] = "varnholt_start_impress";

/// The program beside the plug-in that has an office ready before it is needed.
inline constexpr char officeStarterName[] = "varnholt_office_starter";

} // namespace varnholt
