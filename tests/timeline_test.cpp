#include "replay/timeline.h"

#include <gtest/gtest.h>

#include <sstream>

#include "replay/refresh_period.h"

namespace brevold::replay {
namespace {

using Texts = std::vector<std::string>;

constexpr int kMain = 90;
constexpr int kBinder = 91;

/** A trace of the compositor, process 90, with times in tenths of a millisecond. */
class Trace {
  public:
    Trace& add(int time, int tid, const std::string& mark) {
        char line[32];
        snprintf(line, sizeof(line), "a b-%d [000] %d.%04d: 0: ", tid, time / 10000, time % 10000);
        mText += line + mark + "\n";
        return *this;
    }
    /** A frame at a time, latched a millisecond later. */
    Trace& frame(int time, const std::string& counter) {
        return add(time, kBinder, "C|90|" + counter + "|1")
                .add(time + 10, kMain, "C|90|" + counter + "|0");
    }
    Timeline read(const TimelineOptions& options = {}) const {
        std::istringstream input(mText);
        return readTimeline(input, "trace", options);
    }
    std::string error(const TimelineOptions& options = {}) const {
        try {
            read(options);
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

  private:
    std::string mText;
};

/** Events as "<time> <what>", time in tenths of a millisecond; all but the periods. */
Texts eventsOf(const Timeline& timeline) {
    Texts texts;
    for (const TimelineEvent& event : timeline.events) {
        const std::string when = std::to_string(event.timeNs / 100'000) + " ";
        switch (event.kind) {
            case TimelineEvent::Kind::Period:
                break;
            case TimelineEvent::Kind::Depth:
                texts.push_back(when + timeline.layers[static_cast<size_t>(event.layer)].name +
                                "=" + std::to_string(event.depth));
                break;
            case TimelineEvent::Kind::CompositionBegin:
                texts.push_back(when + "begin");
                break;
            case TimelineEvent::Kind::CompositionEnd:
                texts.push_back(when + "end");
                break;
            case TimelineEvent::Kind::Vsync:
                texts.push_back(when + "vsync");
                break;
        }
    }
    return texts;
}

std::vector<std::pair<int64_t, int64_t>> periodsOf(const Timeline& timeline) {
    std::vector<std::pair<int64_t, int64_t>> periods;
    for (const TimelineEvent& event : timeline.events) {
        if (event.kind != TimelineEvent::Kind::Period) continue;
        periods.emplace_back(event.timeNs / 100'000, event.periodNs);
    }
    return periods;
}

Texts layersOf(const Timeline& timeline) {
    Texts names;
    for (const Layer& layer : timeline.layers) {
        names.push_back(layer.name + " " + std::to_string(layer.frames));
    }
    return names;
}

TEST(TimelineTest, KeepsTheOrderOfTheTrace) {
    const Timeline timeline = Trace().add(0, 5, "sched_switch: x")
                                      .add(10, 92, "C|90|VSYNC|1")
                                      .add(20, kBinder, "C|90|BufferTX - a#3|-4")
                                      .add(20, kBinder, "C|90|BufferTX - a#3|2")
                                      .add(30, kMain, "B|90|commit 7")
                                      .add(30, kMain, "C|90|BufferTX - a#3|1")
                                      .add(30, kMain, "E|90")
                                      .add(30, 92, "C|90|VSYNC|1")
                                      .add(30, 92, "C|90|VSYNC|0")
                                      .add(50, 5, "sched_switch: x")
                                      .read();
    EXPECT_EQ(eventsOf(timeline),
              (Texts{"10 vsync", "20 a#3=2", "30 begin", "30 a#3=1", "30 end", "30 vsync"}));
    EXPECT_EQ(timeline.events.front().kind, TimelineEvent::Kind::Period);
    EXPECT_EQ(timeline.startNs, 0);
    EXPECT_EQ(timeline.endNs, 5'000'000);
    EXPECT_EQ(timeline.compositionSource, "commit sections");
    EXPECT_EQ(timeline.vsyncSource, "VSYNC");
    EXPECT_EQ(layersOf(timeline), Texts{"a#3 1"});
}

TEST(TimelineTest, TellsLayersFromOtherCounters) {
    Trace trace;
    trace.add(0, kMain, "B|90|postFramebuffer").add(1, kMain, "E");
    trace.add(2, kBinder, "B|90|Slotted: 3").add(3, kBinder, "E");
    trace.add(4, kBinder, "B|90|FramebufferSurface: 1").add(5, kBinder, "E");
    int time = 100;
    for (const char* name : {"Crossing", "aq:x", "oq:x", "wq:x", "iq", "x fps", "x duration",
                             "FrameMissed", "PrevFrameMissed", "FramebufferSurface", "VSP-mode",
                             "VirtualDisplaySurface-1", "HW_VSYNC_ON_0", "VSYNC-app"}) {
        trace.frame(time += 20, name);
    }
    trace.add(500, kMain, "C|90|OnMain|1").add(501, kMain, "C|90|OnMain|0");
    trace.add(502, kBinder, "C|90|OnBinder|1").add(503, kBinder, "C|90|OnBinder|0");
    trace.add(504, 7, "C|77|Elsewhere|1").add(505, kMain, "C|77|Elsewhere|0");
    trace.add(900, kMain, "C|90|Slotted|1");
    EXPECT_EQ(layersOf(trace.read()), (Texts{"Slotted#0 1", "Crossing#0 1"}));
    trace.frame(950, "BufferTX - Newer#12");
    EXPECT_EQ(layersOf(trace.read()), Texts{"Newer#12 1"});
}

TEST(TimelineTest, CountsOnlyTheOutermostCompositions) {
    const Timeline timeline = Trace().add(0, kMain, "E")
                                      .frame(1, "BufferTX - a#0")
                                      .add(20, kMain, "B|90|commit 1")
                                      .add(21, kMain, "E")
                                      .add(22, kMain, "B|90|commitTransaction")
                                      .add(23, kMain, "B|90|handleMessageRefresh")
                                      .add(24, kMain, "B|90|postFramebuffer")
                                      .add(24, kBinder, "B|90|queueBuffer")
                                      .add(25, kMain, "E|90")
                                      .add(26, kBinder, "E|90")
                                      .add(27, kMain, "E|90")
                                      .add(28, kMain, "E|90")
                                      .add(30, kMain, "B|90|composite 1")
                                      .add(31, kMain, "B|90|its end and that around it are lost")
                                      .add(40, kMain, "B|90|composite 2")
                                      .add(41, kMain, "E")
                                      .add(50, kMain, "B|90|composite")
                                      .add(51, kMain, "E")
                                      .add(60, kMain, "B|90|composite 3")
                                      .read();
    EXPECT_EQ(eventsOf(timeline), (Texts{"1 a#0=1", "11 a#0=0", "23 begin", "27 end", "40 begin",
                                         "41 end", "50 begin", "51 end"}));
    EXPECT_EQ(timeline.compositionSource, "composite sections");
}

TEST(TimelineTest, TakesLatchesForCompositions) {
    const Timeline timeline = Trace().frame(0, "BufferTX - a#1")
                                      .frame(41, "BufferTX - b#2")
                                      .add(60, kBinder, "C|90|BufferTX - a#1|1")
                                      .add(90, kMain, "C|90|BufferTX - a#1|0")
                                      .frame(100, "BufferTX - b#2")
                                      .read();
    EXPECT_EQ(eventsOf(timeline), (Texts{"0 a#1=1", "10 begin", "10 a#1=0", "10 end", "41 b#2=1",
                                         "51 begin", "51 b#2=0", "60 a#1=1", "90 a#1=0", "90 end",
                                         "100 b#2=1", "110 begin", "110 b#2=0", "110 end"}));
    EXPECT_EQ(timeline.compositionSource, "latches");
    EXPECT_EQ(timeline.vsyncSource, "none in the trace");
}

TEST(TimelineTest, PicksTheSourceOfThePeriod) {
    Trace trace;
    for (int i = 0; i < 20; ++i)
        trace.frame(i * 167, "BufferTX - a#0");
    const struct {
        const char* counter;
        int interval;
        int value;
        const char* source;
        int64_t periodNs;
    } steps[] = {
            {"HW_VSYNC_ON_0", 100, 0, "frame intervals, as the trace has no vsyncs", kPeriod60Ns},
            {"VSYNC-sf", 222, 0, "frame intervals, as the trace has no vsyncs", kPeriod60Ns},
            {"HW_VSYNC_0", 111, 0, "HW_VSYNC_0 toggles", kPeriod90Ns},
            {"VSYNC", 83, 0, "VSYNC toggles", kPeriod120Ns},
            {"VSYNC-app", 200, 0, "VSYNC-app toggles", 20'000'000},
            {"VSR-setPeriod", 100, 11'000'000, "VSR-setPeriod", kPeriod90Ns},
    };
    int time = 10'000;
    for (const auto& step : steps) {
        for (int i = 0; i < 6; ++i) {
            time += step.interval;
            trace.add(time, 92,
                      "C|90|" + std::string(step.counter) + "|" +
                              std::to_string(step.value > 0 ? step.value : i % 2));
        }
        const Timeline timeline = trace.read();
        EXPECT_EQ(timeline.periodSource, step.source);
        EXPECT_EQ(periodsOf(timeline), (decltype(periodsOf(timeline)){{0, step.periodNs}}));
    }
    trace.add(time + 10, 92, "C|90|VSR-setPeriod|7000000");
    EXPECT_EQ(periodsOf(trace.read()).back().second, 7'000'000);
    EXPECT_EQ(periodsOf(trace.read({{}, 59.94})).front().second, 16'683'350);
}

TEST(TimelineTest, FindsTheLayerAskedFor) {
    Trace trace;
    trace.frame(0, "BufferTX - StatusBar").frame(100, "BufferTX - com.a/com.a.Main#7");
    trace.frame(200, "BufferTX - com.a/com.a.Main#7").frame(300, "BufferTX - Wallpaper#1");
    trace.frame(400, "BufferTX - Wallpaper#1").frame(500, "BufferTX - Other#5");
    EXPECT_EQ(trace.read().focusedLayer, 1u);
    EXPECT_EQ(trace.read({"StatusBar", {}}).focusedLayer, 0u);
    EXPECT_EQ(trace.read({"StatusBar#0", {}}).focusedLayer, 0u);
    EXPECT_EQ(trace.error({"com.a.Main", {}}),
              "trace: no layer 'com.a.Main' has frames, the closest are "
              "'com.a/com.a.Main#7', 'StatusBar#0', 'Wallpaper#1'");
}

TEST(TimelineTest, SaysWhatIsWrongWithAnInput) {
    EXPECT_EQ(Trace().add(0, kMain, "B|90|composite").error(),
              "trace: no layer has frames; were the graphics events recorded?");
    for (const auto& [path, message] :
         {std::pair("/nonexistent", "/nonexistent: cannot be opened: No such file or directory"),
          std::pair("/tmp", "/tmp: is a directory, expected a file of ftrace text")}) {
        try {
            readTimeline(path, {});
            ADD_FAILURE() << path;
        } catch (const InputError& error) {
            EXPECT_STREQ(error.what(), message);
        }
    }
}

}  // namespace
}  // namespace brevold::replay
