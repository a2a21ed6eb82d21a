#include "trace/refresh_period.h"

#include <gtest/gtest.h>

#include <tuple>

namespace brevold::trace {
namespace {

constexpr int64_t k60Ns = kPeriod60Ns;
constexpr int64_t k90Ns = kPeriod90Ns;

struct Ticks {
    int count;
    int64_t lengthUs;
    int64_t jitterUs = 0;
};

/** Consecutive intervals; jitter lengthens one interval and shortens the next. */
std::vector<Interval> intervalsOf(const std::vector<Ticks>& runs) {
    std::vector<Interval> intervals;
    int64_t timeNs = 0;
    for (const Ticks& run : runs) {
        for (int i = 0; i < run.count; ++i) {
            const int64_t shiftUs = i % 3 == 0 ? run.jitterUs : i % 3 == 1 ? -run.jitterUs : 0;
            const int64_t lengthNs = (run.lengthUs + shiftUs) * 1000;
            intervals.push_back({timeNs += lengthNs, lengthNs});
        }
    }
    return intervals;
}

TEST(RefreshPeriodTest, SnapsAndRounds) {
    EXPECT_EQ(snapPeriod(17'166'665), k60Ns);
    EXPECT_EQ(snapPeriod(17'166'667), 17'166'667);
    EXPECT_EQ(snapPeriod(10'777'778), k90Ns);
    EXPECT_EQ(snapPeriod(8'100'000), kPeriod120Ns);
    EXPECT_EQ(periodOfRate(60), k60Ns);
    EXPECT_EQ(periodOfRate(59.94), 16'683'350);
}

TEST(RefreshPeriodTest, FollowsThePeriod) {
    constexpr auto kKeep = UnknownRate::Keep;
    constexpr auto kIgnore = UnknownRate::Ignore;
    const std::tuple<const char*, std::vector<Ticks>, UnknownRate, std::vector<int64_t>> cases[] = {
            {"one interval is not enough", {{1, 16'600}}, kKeep, {}},
            {"two are enough", {{2, 16'600}}, kKeep, {k60Ns}},
            {"jitter", {{300, 11'200, 3'000}}, kIgnore, {k90Ns}},
            {"half of 60 Hz", {{40, 33'300}}, kIgnore, {k60Ns}},
            {"third of 60 Hz", {{40, 50'000}}, kIgnore, {k60Ns}},
            {"half of 90 Hz", {{40, 22'200}}, kIgnore, {k90Ns}},
            {"third of 120 Hz", {{40, 25'000}}, kIgnore, {kPeriod120Ns}},
            {"third of the current 90 Hz", {{40, 11'100}, {40, 33'300}}, kIgnore, {k90Ns}},
            {"144 Hz vsyncs", {{99, 6'950, 40}}, kKeep, {6'950'000}},
            {"144 Hz frames", {{99, 6'950, 40}}, kIgnore, {}},
            {"no steady rate", {{99, 20'000, 9'000}}, kKeep, {}},
            {"50 Hz after 60 Hz", {{40, 16'700}, {40, 20'000}}, kKeep, {k60Ns, 20'000'000}},
            {"pauses and outliers",
             {{40, 16'700}, {30, 600'000}, {10, 8'300}, {40, 16'700}},
             kKeep,
             {k60Ns}},
            {"a change during a pause",
             {{40, 16'700}, {1, 600'000}, {40, 8'300}},
             kKeep,
             {k60Ns, kPeriod120Ns}},
            {"the edge of a snap", {{60, 17'100}, {60, 17'250}, {60, 17'100}}, kKeep, {k60Ns}},
    };
    for (const auto& [what, ticks, unknown, expectedNs] : cases) {
        std::vector<int64_t> periodsNs;
        for (const PeriodChange& change : followPeriod(intervalsOf(ticks), unknown))
            periodsNs.push_back(change.periodNs);
        EXPECT_EQ(periodsNs, expectedNs) << what;
    }
}

TEST(RefreshPeriodTest, DatesAChangeBack) {
    const auto changes = followPeriod(
            intervalsOf({{100, 16'667, 1'000}, {100, 11'111, 1'000}, {25, 16'667, 1'000}}),
            UnknownRate::Keep);
    ASSERT_EQ(changes.size(), 3u);
    EXPECT_NEAR(static_cast<double>(changes[1].timeNs), 1'667'700'000, k60Ns);
    EXPECT_NEAR(static_cast<double>(changes[2].timeNs), 2'779'800'000, k60Ns);
}

}  // namespace
}  // namespace brevold::trace
