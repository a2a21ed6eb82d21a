#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace brevold::trace {

/** Relates the clocks of a Perfetto trace to boot time. */
class ClockOffsets {
  public:
    /** Takes the message ClockSnapshot; a later one replaces the offsets that it has. */
    void add(std::string_view snapshot);

    /** Adds to a clock's time in ns to get boot time; nullopt if no snapshot has both clocks. */
    std::optional<int64_t> toBootNs(uint32_t clockId) const;

  private:
    std::map<uint32_t, int64_t> mOffsetsNs;
};

}  // namespace brevold::trace
