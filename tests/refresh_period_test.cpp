#include "trace/refresh_period.h"

#include <gtest/gtest.h>

#include <tuple>

namespace brevold::trace {
namespace {

constexpr int64_t k60Ns = kPeriod60Ns;
constexpr int64_t k90Ns = kPeriod90Ns;
constexpr int64_t k120Ns = kPeriod120Ns;

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
    EXPECT_EQ(snapPeriod(8'100'000), k120Ns);
    EXPECT_EQ(periodOfRate(60), k60Ns);
    EXPECT_EQ(periodOfRate(59.94), 16'683'350);
}

TEST(RefreshPeriodTest, FollowsThePeriod) {
    using Kind = IntervalKind;
    constexpr auto kAsked = Kind::RequestedTick;
    constexpr auto kFrame = Kind::Frame;
    constexpr auto kTick = Kind::DisplayTick;
    const std::tuple<const char*, std::vector<Ticks>, Kind, std::vector<int64_t>> cases[] = {
            {"one interval is not enough", {{1, 16'600}}, kAsked, {}},
            {"two are enough", {{2, 16'600}}, kAsked, {k60Ns}},
            {"jitter", {{300, 11'200, 3'000}}, kFrame, {k90Ns}},
            {"half of 60 Hz", {{40, 33'300}}, kFrame, {k60Ns}},
            {"third of 60 Hz", {{40, 50'000}}, kFrame, {k60Ns}},
            {"half of 90 Hz", {{40, 22'200}}, kFrame, {k90Ns}},
            {"third of 120 Hz", {{40, 25'000}}, kFrame, {k120Ns}},
            {"third of the current 90 Hz", {{40, 11'100}, {40, 33'300}}, kFrame, {k90Ns}},
            {"144 Hz vsyncs", {{99, 6'950, 40}}, kAsked, {6'950'000}},
            {"144 Hz frames", {{99, 6'950, 40}}, kFrame, {}},
            {"no steady rate", {{99, 20'000, 9'000}}, kAsked, {}},
            {"50 Hz after 60 Hz", {{40, 16'700}, {40, 20'000}}, kAsked, {k60Ns, 20'000'000}},
            {"pauses and outliers",
             {{40, 16'700}, {30, 600'000}, {10, 8'300}, {40, 16'700}},
             kAsked,
             {k60Ns}},
            {"a change during a pause",
             {{40, 16'700}, {1, 600'000}, {40, 8'300}},
             kAsked,
             {k60Ns, k120Ns}},
            {"half of 144 Hz", {{40, 6'950}, {40, 13'900}}, kAsked, {6'950'000}},
            {"144 to 72 Hz", {{40, 6'950}, {5, 13'900}}, kTick, {6'950'000, 13'900'000}},
            {"60 to 30 Hz", {{40, 16'700}, {5, 33'300}}, kTick, {k60Ns, 33'300'000}},
            {"120 to 60 Hz", {{40, 8'300}, {5, 16'700}}, kTick, {k120Ns, k60Ns}},
            {"60 to 120 Hz", {{40, 16'700}, {5, 8'300}}, kTick, {k60Ns, k120Ns}},
            {"two late ticks", {{40, 8'300}, {2, 16'700}, {40, 8'300}}, kTick, {k120Ns}},
            {"jitter of ticks", {{300, 11'200, 3'000}}, kTick, {k90Ns}},
            {"unsteady ticks", {{99, 20'000, 9'000}}, kTick, {}},
            {"requested ticks, 120 to 60 Hz", {{40, 8'300}, {19, 16'700}}, kAsked, {k120Ns, k60Ns}},
            {"requested ticks, 60 to 120 Hz", {{40, 16'700}, {19, 8'300}}, kAsked, {k60Ns, k120Ns}},
            {"too few of them", {{40, 8'300}, {11, 16'700}, {40, 8'300}}, kAsked, {k120Ns}},
            {"beyond a snap", {{60, 17'100}, {60, 17'400}}, kAsked, {k60Ns, 17'400'000}},
            {"the edge of a snap", {{60, 17'100}, {60, 17'250}, {60, 17'100}}, kAsked, {k60Ns}},
    };
    for (const auto& [what, ticks, kind, expectedNs] : cases) {
        std::vector<int64_t> periodsNs;
        for (const PeriodChange& change : followPeriod(intervalsOf(ticks), kind))
            periodsNs.push_back(change.periodNs);
        EXPECT_EQ(periodsNs, expectedNs) << what;
    }
}

TEST(RefreshPeriodTest, DatesAChangeBack) {
    const auto changes = followPeriod(
            intervalsOf({{100, 16'667, 1'000}, {100, 11'111, 1'000}, {25, 16'667, 1'000}}),
            IntervalKind::RequestedTick);
    ASSERT_EQ(changes.size(), 3u);
    EXPECT_NEAR(static_cast<double>(changes[1].timeNs), 1'667'700'000, k60Ns);
    EXPECT_NEAR(static_cast<double>(changes[2].timeNs), 2'779'800'000, k60Ns);
}

}  // namespace
}  // namespace brevold::trace
