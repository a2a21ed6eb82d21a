#include "trace/expansion_limit.h"

#include <fmt/format.h>

#include "base/error.h"

namespace brevold::trace {

void ExpansionLimit::add(size_t expandedBytes, uint64_t inputBytes) {
    mExpandedBytes += expandedBytes;
    const bool isTooDense = mExpandedBytes > mLimits.minBytesForRatio &&
                            mExpandedBytes > mLimits.maxRatio * inputBytes;
    if (!isTooDense && mExpandedBytes <= mLimits.maxBytes) return;
    throw InputError(
            fmt::format("{}: expected a compressed trace, got {} bytes that expand to more "
                        "than {} MiB",
                        mName, inputBytes, (mExpandedBytes - 1) >> 20));
}

}  // namespace brevold::trace
