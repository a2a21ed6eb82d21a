#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace brevold::trace {

/** The limits of what an input may expand to. No recorder comes near them. */
struct ExpansionLimits {
    uint64_t maxBytes = uint64_t{4} << 30;
    /** Of the expanded bytes to those of the input; not checked up to `minBytesForRatio`. */
    uint64_t maxRatio = 1000;
    uint64_t minBytesForRatio = uint64_t{256} << 20;
};

/** Refuses an input that expands too far: a small file may expand to more than a disk holds. */
class ExpansionLimit {
  public:
    /** Error messages begin with `name`. */
    explicit ExpansionLimit(std::string name, ExpansionLimits limits = {})
          : mName(std::move(name)), mLimits(limits) {}

    /**
     * Adds expanded bytes. `inputBytes` is the count of the input's bytes read so far. Throws
     * InputError beyond the limits.
     */
    void add(size_t expandedBytes, uint64_t inputBytes);
    /** Continues with no expanded bytes. */
    void reset() { mExpandedBytes = 0; }

  private:
    std::string mName;
    ExpansionLimits mLimits;
    uint64_t mExpandedBytes = 0;
};

}  // namespace brevold::trace
