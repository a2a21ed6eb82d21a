#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace brevold::trace {

/** Relates the clocks of a Perfetto trace to boot time. */
class ClockOffsets {
  public:
    /** Takes the message ClockSnapshot. A later one replaces the offsets of its clocks. */
    void add(std::string_view snapshot);

    /**
     * Returns the time in ns to add to a time of the clock to get boot time, or nullopt if no
     * snapshot has both clocks.
     */
    std::optional<int64_t> offsetToBootNs(uint32_t clockId) const;

  private:
    std::map<uint32_t, int64_t> mOffsetsNs;
};

}  // namespace brevold::trace
