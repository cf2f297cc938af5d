#pragma once

#include <chrono>
#include <future>

namespace varnholt {

/// Runs `work` on a thread of its own and calls `pulse` again and again until it is done, so
/// that the window goes on repainting while a slow disk is waited for. What `work` throws is
/// thrown here; gives back its result.
template <typename Work, typename Pulse>
auto InBackground(const Work& work, const Pulse& pulse)
{
    constexpr std::chrono::milliseconds oftenEnough{15};
    auto done = std::async(std::launch::async, work);
    while (done.wait_for(oftenEnough) != std::future_status::ready) {
        pulse();
    }
    return done.get();
}

} // namespace varnholt
