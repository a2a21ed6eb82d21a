#include "replay/time_window.h"

#include <fmt/format.h>

#include <cmath>
#include <stdexcept>

#include "base/error.h"
#include "base/time_units.h"

namespace brevold::replay {

void checkWindow(const WindowOptions& options) {
    if (options.fromS && options.toS && *options.fromS >= *options.toS) {
        throw std::runtime_error(fmt::format("--from must be less than --to, got {} and {}",
                                             *options.fromS, *options.toS));
    }
}

TimeWindow windowOf(const trace::Timeline& timeline, const WindowOptions& options,
                    const std::string& path) {
    const double durationS = toSeconds(timeline.endNs - timeline.startNs);
    if (options.fromS && *options.fromS > durationS) {
        throw InputError(fmt::format("{}: --from {} is after the end of the trace, at {:.6f} s",
                                     path, *options.fromS, durationS));
    }
    const auto timeOf = [&](double seconds) {
        return timeline.startNs + std::llround(seconds * 1e9);
    };
    return {options.fromS ? timeOf(*options.fromS) : timeline.startNs,
            options.toS && *options.toS < durationS ? timeOf(*options.toS) : timeline.endNs};
}

}  // namespace brevold::replay
