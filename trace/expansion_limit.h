#pragma once

#include <cstdint>
#include <string>

namespace brevold::trace {

/**
 * Refuses compressed data that no recorder writes: a small file may expand to more than a disk
 * holds. The limits are 4 GiB, and 1,000 times the compressed size above 256 MiB.
 */
class ExpansionLimit {
  public:
    /** Error messages begin with `name`. */
    explicit ExpansionLimit(std::string name) : mName(std::move(name)) {}

    void addCompressed(size_t bytes) { mCompressedBytes += bytes; }
    /** Throws InputError if the data expands beyond the limits. */
    void addExpanded(size_t bytes);

  private:
    std::string mName;
    uint64_t mCompressedBytes = 0;
    uint64_t mExpandedBytes = 0;
};

}  // namespace brevold::trace
