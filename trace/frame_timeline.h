#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "trace/timeline.h"

namespace brevold::trace {

/** Collects the frames that the compositor judged. */
class FrameTimeline {
  public:
    /** Takes the message FrameTimelineEvent of a packet with this time. */
    void add(int64_t timeNs, std::string_view event);

    /** Returns true if the trace has a frame timeline, even one without frames of a layer. */
    bool hasEvents() const { return mHasEvents; }

    /** The layer's frames that have an end, in the order of their ends. */
    std::vector<JudgedFrame> framesOf(const std::string& layer) const;

  private:
    struct LayerFrame {
        JudgedFrame frame;
        uint32_t layer;
    };

    void begin(int64_t timeNs, std::string_view frame);
    void end(int64_t timeNs, std::string_view frame);

    bool mHasEvents = false;
    std::unordered_map<std::string, uint32_t> mLayers;
    std::unordered_map<int64_t, LayerFrame> mOpen;  // by cookie
    std::vector<LayerFrame> mFrames;
};

}  // namespace brevold::trace
