#pragma once

#include <cstdint>
#include <vector>

namespace brevold::trace {

constexpr int64_t kPeriod60Ns = 16'666'666;
constexpr int64_t kPeriod90Ns = 11'111'111;
constexpr int64_t kPeriod120Ns = 8'333'333;

/** The distance between two toggles of a vsync, or between two frames of one layer. */
struct Interval {
    int64_t endNs;
    int64_t lengthNs;
};

/** The refresh period is periodNs from timeNs on. */
struct PeriodChange {
    int64_t timeNs;
    int64_t periodNs;
};

/** What to make of a steady interval that is no multiple of a period at 60, 90 or 120 Hz. */
enum class UnknownRate : uint8_t { Keep, Ignore };

/** The exact period at 60, 90 or 120 Hz where the given one is within 3 %, else the given one. */
int64_t snapPeriod(int64_t periodNs);

/** The period of a rate: the one above for 60, 90 and 120, else rounded to the nearest ns. */
int64_t periodOfRate(double rateHz);

/**
 * Follows the refresh period along intervals that are in order of their ends. A steady interval of
 * twice or thrice a period is read as that period, of which ticks were skipped; the lowest of 60,
 * 90 and 120 Hz is preferred, unless the period until then fits too.
 *
 * Intervals too long for a display are pauses, and left out. A change has to hold for some twenty
 * intervals; it is then dated back to the first of them. The first entry is the initial period, its
 * time without meaning. Empty where fewer than two intervals are left, or none of them tells.
 */
std::vector<PeriodChange> followPeriod(const std::vector<Interval>& intervals, UnknownRate unknown);

}  // namespace brevold::trace
