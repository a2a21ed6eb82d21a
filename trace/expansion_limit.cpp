#include "trace/expansion_limit.h"

#include <fmt/format.h>

#include "base/error.h"

namespace brevold::trace {
namespace {

constexpr uint64_t kMiB = uint64_t{1} << 20;
constexpr uint64_t kMaxBytes = 4096 * kMiB;
constexpr uint64_t kMaxRatio = 1000;
constexpr uint64_t kMinBytesForRatio = 256 * kMiB;

}  // namespace

void ExpansionLimit::addExpanded(size_t bytes) {
    mExpandedBytes += bytes;
    const bool isTooDense =
            mExpandedBytes > kMinBytesForRatio && mExpandedBytes > kMaxRatio * mCompressedBytes;
    if (!isTooDense && mExpandedBytes <= kMaxBytes) return;
    throw InputError(
            fmt::format("{}: expected a compressed trace, got {} bytes that expand to more "
                        "than {} MiB",
                        mName, mCompressedBytes, (mExpandedBytes - 1) / kMiB));
}

}  // namespace brevold::trace
