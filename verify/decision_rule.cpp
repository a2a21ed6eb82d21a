#include "verify/decision_rule.h"

#include <algorithm>
#include <cmath>

#include "brevold/frame_rate.h"
#include "brevold/headroom.h"

namespace brevold::verify {

namespace {

constexpr double kScaleTolerance = 0.02;
constexpr double kHintUnit = 0.001;
/** Half of the last decimal in a label, and as much for the rounding of this constant. */
constexpr double kLabelRounding = 1e-6;

/** Returns true if the difference is at most `tolerance`; also if both are NaN or infinite. */
bool isWithin(double a, double b, double tolerance) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return a == b || std::abs(a - b) <= tolerance;
}

}  // namespace

std::optional<DecisionLabel> decide(const FrameFigures& figures) {
    const android::RefreshBand* const band = android::refreshBandOf(figures.periodNs);
    if (band == nullptr || band->mode != figures.mode || figures.depth < 1) return {};
    const int64_t budgetNs = android::frameBudgetOf(figures.periodNs);
    const bool isDown = figures.depth >= android::kMinDepthForDown;
    int64_t headroomNs;
    if (__builtin_sub_overflow(isDown ? budgetNs * figures.depth : budgetNs, figures.sinceStampNs,
                               &headroomNs)) {
        return {};
    }
    DecisionLabel label = {isDown ? Direction::Down : Direction::Up,
                           figures.mode,
                           0.0,
                           headroomNs,
                           figures.intervalNs,
                           figures.sinceStampNs,
                           figures.depth};
    if (isDown) {
        label.scale = static_cast<double>(android::downScale(figures.intervalNs, headroomNs));
        return label;
    }
    int64_t withNextNs;
    if (__builtin_add_overflow(headroomNs, budgetNs, &withNextNs)) return {};
    const float scale = android::ratio(figures.intervalNs, withNextNs);
    if (!android::isUpDue(scale)) return {};
    label.scale = static_cast<double>(scale);
    return label;
}

std::optional<int64_t> reportedPeriodNs(const DecisionLabel& label) {
    int64_t budgetsNs;
    if (__builtin_add_overflow(label.headroomNs, label.sinceStampNs, &budgetsNs)) return {};
    const int64_t budgets = label.direction == Direction::Down ? label.depth : 1;
    if (budgets < 1 || budgetsNs < 0 || budgetsNs % budgets != 0) return {};
    const int64_t budgetNs = budgetsNs / budgets;
    for (const android::RefreshBand& band : android::kRefreshBands) {
        if (budgetNs >= android::frameBudgetOf(band.minPeriodNs) &&
            budgetNs <= android::frameBudgetOf(band.maxPeriodNs)) {
            return band.minPeriodNs + budgetNs - android::frameBudgetOf(band.minPeriodNs);
        }
    }
    return {};
}

bool followsRule(const DecisionLabel& label) {
    const std::optional<int64_t> periodNs = reportedPeriodNs(label);
    if (!periodNs) return false;
    const std::optional<DecisionLabel> own =
            decide({*periodNs, label.mode, label.depth, label.intervalNs, label.sinceStampNs});
    return own && own->direction == label.direction && own->headroomNs == label.headroomNs &&
           isWithin(own->scale, label.scale, kLabelRounding);
}

bool isNearScale(double a, double b) {
    return isWithin(a, b,
                    std::max(kHintUnit, kScaleTolerance * std::max(std::abs(a), std::abs(b))));
}

bool agree(const DecisionLabel& a, const DecisionLabel& b) {
    return a.direction == b.direction && a.depth == b.depth && isNearScale(a.scale, b.scale);
}

}  // namespace brevold::verify
