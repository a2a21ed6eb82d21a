#include "verify/difference_track.h"

#include <algorithm>

#include "verify/words.h"

namespace brevold::verify {

report::AddedTrack differenceTrack(const Verification& verification) {
    report::AddedTrack track = {"differs", {}};
    for (const Difference& difference : verification.differences.list()) {
        // Sections on a thread must not overlap. They are one refresh period long, or less.
        if (!track.sections.empty()) {
            int64_t& endNs = track.sections.back().endNs;
            endNs = std::min(endNs, difference.timeNs);
        }
        track.sections.push_back({difference.timeNs, difference.timeNs + verification.periodNs,
                                  describe(difference)});
    }
    return track;
}

}  // namespace brevold::verify
