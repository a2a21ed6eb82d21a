#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace brevold::trace {

constexpr int64_t kPeriod60Ns = 16'666'666;
constexpr int64_t kPeriod90Ns = 11'111'111;
constexpr int64_t kPeriod120Ns = 8'333'333;
/** Values outside this range are not refresh periods. */
constexpr int64_t kMinPeriodNs = 1'000'000;
constexpr int64_t kMaxPeriodNs = 1'000'000'000;

/** The time between two toggles of a vsync counter, or between two frames of a layer. */
struct Interval {
    int64_t endNs;
    int64_t lengthNs;
};

/** The refresh period is periodNs from timeNs on. */
struct PeriodChange {
    int64_t timeNs;
    int64_t periodNs;
};

/** The relation of intervals to the refresh period. */
enum class IntervalKind : uint8_t {
    DisplayTick,    // each is one period
    RequestedTick,  // of vsyncs on request: a steady interval of two or three periods skips ticks
    Frame,  // like RequestedTick, but a rate unlike 60, 90 and 120 Hz is the application's own
};

/** A change of the period is followed if it lasts for this many intervals of kind DisplayTick. */
constexpr size_t kDisplayTicksToFollow = 5;

/** Returns the exact period at 60, 90 or 120 Hz if periodNs is within 3 % of it, else periodNs. */
int64_t snapPeriod(int64_t periodNs);

/** Returns true if a length is within 3 % of one, two or three periods. */
bool isTicksOf(int64_t lengthNs, int64_t periodNs);

/** Returns the period of a rate, exact for 60, 90 and 120 Hz, else rounded to the nearest ns. */
int64_t periodOfRate(double rateHz);

/**
 * Follows the refresh period along intervals in the order of their ends. If several of 60, 90 and
 * 120 Hz fit an interval that skips ticks, the current period is preferred, then the lowest rate.
 *
 * Ignores intervals too long for a display; they are pauses. A change has to last for
 * kDisplayTicksToFollow ticks, or about twenty intervals of the other kinds, and is then dated back
 * to the first of them. The first entry is the initial period; ignore its time. Returns no entry if
 * fewer than two intervals are left or none has a period.
 */
std::vector<PeriodChange> followPeriod(std::vector<Interval> intervals, IntervalKind kind);

}  // namespace brevold::trace
