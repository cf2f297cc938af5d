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
    /// shape. Milliseconds by calls and by file, the office running (medians of 5 runs): 10 slides
    /// 326 and 194, 30 slides 709 and 461, 50 slides 1118 and 682, 100 slides 1917 and 1105.
    /// Below 100 a file gains less than a second, too little for what it takes away: to see the
    /// slides come, to stop at once, and to hear of a picture that the office cannot read.
    int manySlides = 100;
};

/// The plug-in's one entry, exported as `impressEntryName`: a connected Impress. Throws `Error`
/// when the office cannot be reached and `Cancelled` when the user stopped waiting.
using ImpressEntry = PresentationProgram* (*)(const ImpressSettings& settings);

inline constexpr char impressEntryName[] = "varnholt_start_impress";

/// The program beside the plug-in that has an office ready before it is needed.
inline constexpr char officeStarterName[] = "varnholt_office_starter";

} // namespace varnholt
