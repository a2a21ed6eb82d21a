#pragma once

#include <string>

namespace brevold::bench {

struct SampleTrace {
    int frames = 2000;
    int layers = 1;
    /** Every how many frames one is late, which leads to a hint. */
    int lateEvery = 8;
};

/** Returns the ftrace text of a game at 120 Hz, about 600 bytes a frame. */
std::string textOf(const SampleTrace& trace);

}  // namespace brevold::bench
