#include "report/legend.h"

namespace brevold::report {

const char* legendOf(Block block) {
    switch (block) {
        case Block::Trace:
            return R"(  | layer: the layer that the library acts for.
  | frames: the rate and the intervals of queued frames. Gaps of 150 ms or more are idle instead.
  | missed: an interval of n refreshes between two latches misses n - m, where m is the median of
  | the 15 intervals before it.
  | boost verdict: the answer 1 at a vsync, which means that a slow application should be boosted.
)";
        case Block::Requests:
            return R"(  | headroom: one refresh period less 1 ms for each queued frame, minus the time since the
  | compositor's stamp.
  | scale: the interval between the last two frames divided by the headroom. Below 1, the
  | application has time to spare. A negative headroom gives scale 0.
  | DOWN: a request to run slower, made when two or more frames are queued.
  | UP: a request to run faster, made when one frame is queued and the scale is above 1 even with
  | one more refresh period of headroom.
  | jank boost: a request at scale 10, made when a composition leaves frames piled up. The next
  | refresh tick releases it.
  | held: the time until the requests expire, or others replace or release them.
  | bars: the number of requests by scale, in steps of 0.1 from 0 to 1 for DOWN, and from 1, 1.5, 2,
  | 3, 4, 6, 8, 12, 16 and 24 on for UP.
)";
        case Block::Frames:
            return R"(  | Each frame of the layer counts once: by its request, or by the first test of the library that
  | stopped it.
)";
        case Block::Modes:
            return R"(  | frame-rate mode: the class of the frame rate that the library measured last. DOWN and UP need
  | the mode of the display's refresh rate.
  | measuring window: the refresh ticks of a little more than one second, which give the mode. The
  | mode is unclassified until the first one ends, for a new layer and after an idle gap of 150 ms.
)";
        case Block::Log:
            return R"(  | With debug output, the library logs one line at error priority for each measuring window.
)";
        case Block::Rows:
            return R"(  | down/%: the share of the time during which a DOWN request holds, and scale: its mean meanwhile.
  | verdicts: the vsyncs at which the library found that a slow application should be boosted.
)";
    }
    return "";
}

}  // namespace brevold::report
