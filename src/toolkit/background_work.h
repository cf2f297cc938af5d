#pragma once

#include "toolkit/LongWork.h"

#include <cstddef>
#include <functional>

namespace varnholt {

/// Told the things done of all things; 0 of 0 while nobody knows. Throws `Cancelled` once the user
/// has asked to stop.
using WorkProgress = std::function<void(std::size_t done, std::size_t all)>;

/// Does work on a thread of its own under a `LongWork`: the windows repaint whatever it waits for,
/// and Cancel takes the bar away at once and stops the work at its next report. Returns or throws
/// when the work does. The work uses nothing that the windows use meanwhile.
void RunInBackground(QWidget* window, const QString& label, LongWork::Cancel cancel,
                     const std::function<void(const WorkProgress& progress)>& work);

} // namespace varnholt
