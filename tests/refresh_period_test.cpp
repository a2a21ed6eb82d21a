#include "replay/refresh_period.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace brevold::replay {
namespace {

/** Intervals that follow one another, a run of equal ones at a time. */
class Ticks {
  public:
    Ticks& add(int count, int64_t lengthNs, int64_t jitterNs = 0) {
        for (int i = 0; i < count; ++i) {
            // The jitter of one end is taken back at the next one.
            const int64_t shiftNs = i % 3 == 0 ? jitterNs : i % 3 == 1 ? -jitterNs : 0;
            mTimeNs += lengthNs + shiftNs;
            mIntervals.push_back({mTimeNs, lengthNs + shiftNs});
        }
        return *this;
    }
    int64_t timeNs() const { return mTimeNs; }
    std::vector<int64_t> periods(UnknownRate unknown) const {
        std::vector<int64_t> periodsNs;
        for (const PeriodChange& change : followPeriod(mIntervals, unknown)) {
            periodsNs.push_back(change.periodNs);
        }
        return periodsNs;
    }
    const std::vector<Interval>& intervals() const { return mIntervals; }

  private:
    int64_t mTimeNs = 0;
    std::vector<Interval> mIntervals;
};

TEST(RefreshPeriodTest, SnapsAndRounds) {
    EXPECT_EQ(snapPeriod(17'166'665), kPeriod60Ns);
    EXPECT_EQ(snapPeriod(17'166'667), 17'166'667);
    EXPECT_EQ(snapPeriod(10'777'778), kPeriod90Ns);
    EXPECT_EQ(snapPeriod(8'100'000), kPeriod120Ns);
    EXPECT_EQ(periodOfRate(60), kPeriod60Ns);
    EXPECT_EQ(periodOfRate(90), kPeriod90Ns);
    EXPECT_EQ(periodOfRate(120), kPeriod120Ns);
    EXPECT_EQ(periodOfRate(59.94), 16'683'350);
    EXPECT_EQ(periodOfRate(144), 6'944'444);
}

TEST(RefreshPeriodTest, ReadsThePeriods) {
    constexpr auto kKeep = UnknownRate::Keep;
    constexpr auto kIgnore = UnknownRate::Ignore;
    const struct {
        const char* what;
        Ticks ticks;
        UnknownRate unknown;
        std::vector<int64_t> periodsNs;
    } cases[] = {
            {"one interval tells nothing", Ticks().add(1, 16'600'000), kKeep, {}},
            {"two do", Ticks().add(2, 16'600'000), kKeep, {kPeriod60Ns}},
            {"jitter", Ticks().add(300, 11'200'000, 3'000'000), kIgnore, {kPeriod90Ns}},
            {"half of 60 Hz", Ticks().add(40, 33'300'000), kIgnore, {kPeriod60Ns}},
            {"third of 60 Hz", Ticks().add(40, 50'000'000), kIgnore, {kPeriod60Ns}},
            {"half of 90 Hz", Ticks().add(40, 22'200'000), kIgnore, {kPeriod90Ns}},
            {"third of 120 Hz", Ticks().add(40, 25'000'000), kIgnore, {kPeriod120Ns}},
            {"third of the current 90 Hz",
             Ticks().add(40, 11'100'000).add(40, 33'300'000),
             kIgnore,
             {kPeriod90Ns}},
            {"144 Hz vsyncs", Ticks().add(99, 6'950'000, 40'000), kKeep, {6'950'000}},
            {"144 Hz frames", Ticks().add(99, 6'950'000, 40'000), kIgnore, {}},
            {"no steady rate", Ticks().add(99, 20'000'000, 9'000'000), kKeep, {}},
            {"50 Hz after 60 Hz",
             Ticks().add(40, 16'700'000).add(40, 20'000'000),
             kKeep,
             {kPeriod60Ns, 20'000'000}},
            {"pauses and odd ones",
             Ticks().add(40, 16'700'000)
                     .add(30, 600'000'000)
                     .add(10, 8'300'000)
                     .add(40, 16'700'000),
             kKeep,
             {kPeriod60Ns}},
            {"a change during a pause",
             Ticks().add(40, 16'700'000).add(1, 600'000'000).add(40, 8'300'000),
             kKeep,
             {kPeriod60Ns, kPeriod120Ns}},
            {"a change among readings that tell nothing",
             Ticks().add(40, 16'700'000)
                     .add(9, 11'100'000)
                     .add(8, 12'300'000)
                     .add(9, 11'100'000)
                     .add(8, 12'300'000)
                     .add(9, 11'100'000),
             kIgnore,
             {kPeriod60Ns, kPeriod90Ns}},
            {"the edge of a snap",
             Ticks().add(60, 17'100'000).add(60, 17'250'000).add(60, 17'100'000),
             kKeep,
             {kPeriod60Ns}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.ticks.periods(c.unknown), c.periodsNs) << c.what;
}

TEST(RefreshPeriodTest, DatesAChangeBack) {
    Ticks ticks;
    ticks.add(100, kPeriod60Ns, 1'000'000);
    const int64_t firstNs = ticks.timeNs();
    ticks.add(100, kPeriod90Ns, 1'000'000);
    const int64_t secondNs = ticks.timeNs();
    ticks.add(25, kPeriod60Ns, 1'000'000);

    const auto changes = followPeriod(ticks.intervals(), UnknownRate::Keep);
    ASSERT_EQ(changes.size(), 3u);
    EXPECT_LE(std::abs(changes[1].timeNs - firstNs), kPeriod60Ns);
    EXPECT_LE(std::abs(changes[2].timeNs - secondNs), kPeriod60Ns);
}

}  // namespace
}  // namespace brevold::replay
