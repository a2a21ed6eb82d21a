// Writes the example traces into a folder: small simulations of a compositor and one application,
// in the words of three Android releases. The same bytes at every run.

#include <algorithm>
#include <cinttypes>
#include <cstdio>
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

/** A trace that is written mark by mark and comes out in time order. */
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
        char text[256];
        const char* const form = mForm == Form::Oldest
                                         ? "%22s [001] %5" PRId64 ".%06" PRId64 ": 0: %s"
                                         : "%22s (  612) [001] .... %5" PRId64 ".%06" PRId64
                                           ": tracing_mark_write: %s";
        snprintf(text, sizeof(text), form, thread.c_str(), us / 1000000, us % 1000000,
                 mark.c_str());
        mLines.push_back({t, text});
    }

    const Form mForm;
    std::vector<Line> mLines;
};

/** Small, repeatable unsteadiness in -range..range. */
int64_t jitter(int64_t range) {
    static uint32_t state = 1;
    state = state * 1664525u + 1013904223u;
    return static_cast<int64_t>(state >> 8) % (2 * range + 1) - range;
}

/** The marks that a release uses. */
struct Words {
    std::string vsync;
    std::string composition;
    std::string depthPrefix;
};

/** One layer's buffer queue: frames go in when the application queues, out when composed. */
class Simulation {
  public:
    Simulation(Trace& trace, Words words, std::string layer)
          : mTrace(trace), mWords(std::move(words)), mLayer(std::move(layer)) {}

    void setLayer(const std::string& layer) { mLayer = layer; }

    /** The application queues a frame. Call in time order. */
    void queue(int64_t t) { mQueueTimes.push_back(t); }

    /** The display refreshes from one time to another; every vsync with a frame is composed. */
    void run(int64_t from, int64_t to, int64_t periodNs) {
        for (int64_t t = from; t < to; t += periodNs) {
            const int64_t vsync = t + jitter(kMs / 20);
            takeQueuedUntil(vsync);
            mTrace.counter(vsync, "DispSync-640", mWords.vsync, mVsyncs++ % 2);
            if (mDepth == 0) continue;
            const int64_t latch = vsync + kMs / 2;
            mTrace.section(vsync + kMs / 4, vsync + 2 * kMs, mWords.composition);
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
        mTrace.counter(t, thread, mWords.depthPrefix + mLayer, depth);
    }

    Trace& mTrace;
    const Words mWords;
    std::string mLayer;
    std::vector<int64_t> mQueueTimes;
    size_t mNext = 0;
    int mVsyncs = 0;
    int mDepth = 0;
};

/** Two frames stand queued when the display takes one: the application has time to spare. */
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

/** Headroom, then frames that come too late, a stall whose frames pile up, and a slower panel. */
void gameThatFallsBehind(const std::string& path) {
    Trace trace(Trace::Form::Tgid);
    Simulation game(trace, {"VSYNC-sf", "composite", "BufferTX - "},
                    "com.example.racer/com.example.racer.Track#118");
    constexpr int64_t kLate = 2200 * kMs;
    constexpr int64_t kStall = 2500 * kMs;
    constexpr int64_t kSlowPanel = 3500 * kMs;
    constexpr int64_t kEnd = 6 * kSecond;
    trace.counter(0, "surfaceflinger-612", "VSR-setPeriod", kPeriod120);
    game.queue(0);
    for (int64_t t = 2 * kMs; t < kLate; t += kPeriod120)
        game.queue(t + jitter(kMs));
    for (int64_t t = kLate + 12 * kMs; t < kStall; t += 15 * kMs)
        game.queue(t + jitter(kMs));
    for (int i = 0; i < 4; ++i)
        game.queue(kStall + 60 * kMs + i * kMs);
    for (int64_t t = kStall + 70 * kMs; t < kSlowPanel; t += kPeriod120)
        game.queue(t + jitter(kMs));
    trace.counter(kSlowPanel, "surfaceflinger-612", "VSR-setPeriod", kPeriod60);
    for (int64_t t = kSlowPanel; t < kEnd; t += kPeriod60)
        game.queue(t + jitter(kMs));
    game.run(kPeriod120, kSlowPanel, kPeriod120);
    game.run(kSlowPanel + kPeriod60, kEnd, kPeriod60);
    trace.write(path);
}

/** Every second vsync has a frame; then nothing moves, and another surface goes on. */
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
