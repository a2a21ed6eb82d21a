#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brevold::plot {

/** Returns a text as valid UTF-8 in which question marks replace control characters. */
std::string printable(std::string_view text);

/** Cuts the middle out of a text that is longer than `maxLength` characters. */
std::string shortened(std::string_view text, size_t maxLength);

struct TimeUnit {
    const char* name;
    double seconds;
};

/** Returns the unit in which a duration has few digits. */
const TimeUnit& timeUnitOf(double seconds);

/** Formats a duration with three digits: "4.84 ms", "62.8 ms", "56.7 min". */
std::string durationText(double seconds);

}  // namespace brevold::plot
