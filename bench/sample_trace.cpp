#include "bench/sample_trace.h"

#include <fmt/format.h>

#include <cstdint>
#include <iterator>

namespace brevold::bench {

namespace {

constexpr int64_t kPeriodNs = 8333333;

void addMark(std::string& text, int64_t timeNs, const std::string& mark) {
    const int64_t us = timeNs / 1000;
    fmt::format_to(std::back_inserter(text),
                   "  surfaceflinger-612   (  612) [001] ....  {}.{:06}: tracing_mark_write: {}\n",
                   us / 1000000, us % 1000000, mark);
}

}  // namespace

std::string textOf(const SampleTrace& trace) {
    std::string text = "# tracer: nop\n";
    for (int frame = 0; frame < trace.frames; ++frame) {
        const int64_t vsyncNs = 250000000000 + frame * kPeriodNs;
        const std::string depth =
                fmt::format("C|612|BufferTX - com.example.app{0}/Main#{0}|", frame % trace.layers);
        const bool isLate = frame % trace.lateEvery == 0;
        addMark(text, vsyncNs, fmt::format("C|612|VSYNC-sf|{}", frame % 2));
        if (!isLate) addMark(text, vsyncNs + 1000000, depth + "1");
        addMark(text, vsyncNs + 2000000, "B|612|composite");
        if (!isLate) addMark(text, vsyncNs + 2500000, depth + "0");
        addMark(text, vsyncNs + 3000000, "E|612");
    }
    return text;
}

}  // namespace brevold::bench
