#pragma once

#include <cstdint>
#include <optional>

#include "verify/label.h"

namespace brevold::verify {

/** The figures from which the library decides for a frame, as the compositor reports them. */
struct FrameFigures {
    int64_t periodNs;
    int32_t mode;
    int32_t depth;
    int64_t intervalNs;
    int64_t sinceStampNs;
};

/** Returns the library's decision, or nullopt if it makes none. */
std::optional<DecisionLabel> decide(const FrameFigures& figures);

/** Returns the refresh period from which a headroom was computed, or nullopt if there is none. */
std::optional<int64_t> reportedPeriodNs(const DecisionLabel& label);

/** Returns true if this library makes the same decision from the label's own figures. */
bool followsRule(const DecisionLabel& label);

/** Returns true if two scales are equal within 2 %, or within the unit of a hint. */
bool isNearScale(double a, double b);

/** Returns true if direction and depth are equal and the scales are near. */
bool agree(const DecisionLabel& a, const DecisionLabel& b);

}  // namespace brevold::verify
