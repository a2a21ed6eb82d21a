// Writes the example traces into a folder: small simulations of a compositor and an application,
// with the marks of three Android releases. Every run writes the same bytes.

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr int64_t kMs = 1000000;
constexpr int64_t kSecond = 1000 * kMs;
constexpr int64_t kStart = 250 * kSecond;
constexpr int kCompositorPid = 612;
constexpr int kPeriod60 = 16666666;
constexpr int kPeriod120 = 8333333;

/** A trace in ftrace text. Marks may be added in any order. */
class Trace {
  public:
    enum class Form { Oldest, Tgid };

    explicit Trace(Form form) : mForm(form) {}

    void counter(int64_t t, const std::string& thread, const std::string& name, int64_t value) {
        add(t, thread, "C|" + pid() + "|" + name + "|" + std::to_string(value));
    }
    void section(int64_t from, int64_t to, const std::string& name) {
        add(from, "surfaceflinger-612", "B|" + pid() + "|" + name);
        add(to, "surfaceflinger-612", mForm == Form::Oldest ? "E" : "E|" + pid());
    }

    void write(const std::string& path) {
        std::stable_sort(mLines.begin(), mLines.end(),
                         [](const Line& a, const Line& b) { return a.t < b.t; });
        std::ofstream out(path);
        out << "# tracer: nop\n#\n# Made by examples/generate.cpp\n#\n";
        for (const Line& line : mLines)
            out << line.text << '\n';
        if (!out.flush()) throw std::runtime_error(path + ": cannot be written");
    }

  private:
    struct Line {
        int64_t t;
        std::string text;
    };

    static std::string pid() { return std::to_string(kCompositorPid); }

    void add(int64_t t, const std::string& thread, const std::string& mark) {
        const int64_t us = (kStart + t) / 1000;
        const std::string time = fmt::format("{:5}.{:06}", us / 1000000, us % 1000000);
        mLines.push_back(
                {t, mForm == Form::Oldest
                            ? fmt::format("{:>22} [001] {}: 0: {}", thread, time, mark)
                            : fmt::format("{:>22} (  612) [001] .... {}: tracing_mark_write: {}",
                                          thread, time, mark)});
    }

    const Form mForm;
    std::vector<Line> mLines;
};

/** Returns a pseudorandom offset from -range to range. */
int64_t jitter(int64_t range) {
    static uint32_t state = 1;
    state = state * 1664525u + 1013904223u;
    return static_cast<int64_t>(state >> 8) % (2 * range + 1) - range;
}

/** The names of an Android release's marks. */
struct MarkNames {
    std::string vsync;
    std::string composition;
    std::string depthPrefix;
};

/** The buffer queue of one layer, filled by the application and emptied by the compositor. */
class Simulation {
  public:
    Simulation(Trace& trace, MarkNames names, std::string layer)
          : mTrace(trace), mNames(std::move(names)), mLayer(std::move(layer)) {}

    void setLayer(const std::string& layer) { mLayer = layer; }

    /** The application queues a frame. Call in time order. */
    void queue(int64_t t) { mQueueTimes.push_back(t); }

    /** Runs the display over an interval; every vsync with a queued frame is composed. */
    void run(int64_t from, int64_t to, int64_t periodNs) {
        for (int64_t t = from; t < to; t += periodNs) {
            const int64_t vsync = t + jitter(kMs / 20);
            takeQueuedUntil(vsync);
            mTrace.counter(vsync, "DispSync-640", mNames.vsync, mVsyncs++ % 2);
            if (mDepth == 0) continue;
            const int64_t latch = vsync + kMs / 2;
            mTrace.section(vsync + kMs / 4, vsync + 2 * kMs, mNames.composition);
            takeQueuedUntil(latch);
            setDepth(latch, "surfaceflinger-612", mDepth - 1);
        }
    }

  private:
    void takeQueuedUntil(int64_t t) {
        for (; mNext < mQueueTimes.size() && mQueueTimes[mNext] <= t; ++mNext) {
            setDepth(mQueueTimes[mNext], "Binder:612_3-655", mDepth + 1);
        }
    }
    void setDepth(int64_t t, const std::string& thread, int depth) {
        mDepth = depth;
        mTrace.counter(t, thread, mNames.depthPrefix + mLayer, depth);
    }

    Trace& mTrace;
    const MarkNames mNames;
    std::string mLayer;
    std::vector<int64_t> mQueueTimes;
    size_t mNext = 0;
    int mVsyncs = 0;
    int mDepth = 0;
};

/** Two frames are queued whenever the compositor latches one: the application has headroom. */
void gameWithHeadroom(const std::string& path) {
    Trace trace(Trace::Form::Tgid);
    Simulation game(trace, {"VSYNC-sf", "onMessageRefresh", ""},
                    "SurfaceView - com.example.puzzle/com.example.puzzle.Board#0");
    constexpr int64_t kEnd = 4 * kSecond;
    for (int64_t t = 0; t < kEnd; t += kPeriod60) {
        trace.counter(t, "DispSync-640", "VSYNC-app", t / kPeriod60 % 2);
    }
    game.queue(0);
    for (int64_t t = 3 * kMs; t < kEnd; t += kPeriod60)
        game.queue(t + 2 * kMs + jitter(2 * kMs));
    game.run(kPeriod60, kEnd, kPeriod60);
    trace.write(path);
}

/** Headroom, then late frames, a stall after which frames pile up, and a lower refresh rate. */
void gameThatFallsBehind(const std::string& path) {
    Trace trace(Trace::Form::Tgid);
    Simulation game(trace, {"VSYNC-sf", "composite", "BufferTX - "},
                    "com.example.racer/com.example.racer.Track#118");
    constexpr int64_t kLate = 2200 * kMs;
    constexpr int64_t kStall = 2500 * kMs;
    constexpr int64_t kRateChange = 3500 * kMs;
    constexpr int64_t kEnd = 6 * kSecond;
    trace.counter(0, "surfaceflinger-612", "VSR-setPeriod", kPeriod120);
    game.queue(0);
    for (int64_t t = 2 * kMs; t < kLate; t += kPeriod120)
        game.queue(t + jitter(kMs));
    for (int64_t t = kLate + 12 * kMs; t < kStall; t += 15 * kMs)
        game.queue(t + jitter(kMs));
    for (int i = 0; i < 4; ++i)
        game.queue(kStall + 60 * kMs + i * kMs);
    for (int64_t t = kStall + 70 * kMs; t < kRateChange; t += kPeriod120)
        game.queue(t + jitter(kMs));
    trace.counter(kRateChange, "surfaceflinger-612", "VSR-setPeriod", kPeriod60);
    for (int64_t t = kRateChange; t < kEnd; t += kPeriod60)
        game.queue(t + jitter(kMs));
    game.run(kPeriod120, kRateChange, kPeriod120);
    game.run(kRateChange + kPeriod60, kEnd, kPeriod60);
    trace.write(path);
}

/** A frame at every second vsync, an idle gap, and then the same on another layer. */
void videoWithAGap(const std::string& path) {
    Trace trace(Trace::Form::Oldest);
    Simulation video(trace, {"VSYNC", "postFramebuffer", ""}, "SurfaceView");
    constexpr int64_t kPause = 2500 * kMs;
    constexpr int64_t kResume = 3300 * kMs;
    constexpr int64_t kEnd = 5 * kSecond;
    for (int64_t t = 4 * kMs; t < kPause; t += 2 * kPeriod60)
        video.queue(t + jitter(2 * kMs));
    for (int64_t t = kResume; t < kEnd; t += 2 * kPeriod60)
        video.queue(t + jitter(2 * kMs));
    video.run(kPeriod60, kResume - 100 * kMs, kPeriod60);
    video.setLayer("com.example.video/com.example.video.FullScreen");
    video.run(kResume, kEnd, kPeriod60);
    trace.write(path);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: generate_examples FOLDER\n";
        return 2;
    }
    const std::string folder = std::string(argv[1]) + "/";
    try {
        gameWithHeadroom(folder + "game-60hz-headroom.ftrace.txt");
        gameThatFallsBehind(folder + "game-120hz-falls-behind.ftrace.txt");
        videoWithAGap(folder + "video-30fps-gap.ftrace.txt");
    } catch (const std::exception& error) {
        std::cerr << "generate_examples: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
