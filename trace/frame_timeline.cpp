#include "trace/frame_timeline.h"

#include <protozero/pbf_message.hpp>

#include "trace/perfetto_fields.h"

namespace brevold::trace {
namespace {

using perfetto::ActualSurfaceFrame;
using protozero::pbf_message;

constexpr std::string_view kLayerPrefix = "TX - ";
constexpr int32_t kOnTime = 1;
constexpr int32_t kLate = 2;
constexpr int32_t kEarly = 3;
constexpr int32_t kDropped = 4;
constexpr uint32_t kDroppedJank = 1024;

FrameVerdict verdictOf(int32_t presentType, uint32_t jankType) {
    if ((jankType & kDroppedJank) != 0) return FrameVerdict::Dropped;
    switch (presentType) {
        case kOnTime:
            return FrameVerdict::OnTime;
        case kLate:
            return FrameVerdict::Late;
        case kEarly:
            return FrameVerdict::Early;
        case kDropped:
            return FrameVerdict::Dropped;
        default:
            return FrameVerdict::Unknown;
    }
}

}  // namespace

void FrameTimeline::add(int64_t timeNs, std::string_view event) {
    mHasEvents = true;
    pbf_message<perfetto::FrameTimelineEvent> fields(event);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case bytes(perfetto::FrameTimelineEvent::ActualSurfaceFrameStart):
                begin(timeNs, fields.get_view());
                break;
            case bytes(perfetto::FrameTimelineEvent::FrameEnd):
                end(timeNs, fields.get_view());
                break;
            default:
                fields.skip();
        }
    }
}

void FrameTimeline::begin(int64_t timeNs, std::string_view frame) {
    pbf_message<ActualSurfaceFrame> fields(frame);
    int64_t cookie = 0;
    int32_t presentType = 0;
    uint32_t jankType = 0;
    std::string_view layer;
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case varint(ActualSurfaceFrame::Cookie):
                cookie = fields.get_int64();
                break;
            case bytes(ActualSurfaceFrame::LayerName):
                layer = fields.get_view();
                break;
            case varint(ActualSurfaceFrame::PresentType):
                presentType = fields.get_enum();
                break;
            case varint(ActualSurfaceFrame::JankType):
                jankType = fields.get_uint32();
                break;
            default:
                fields.skip();
        }
    }
    if (layer.substr(0, kLayerPrefix.size()) != kLayerPrefix) return;
    layer.remove_prefix(kLayerPrefix.size());
    const auto index = static_cast<uint32_t>(mLayers.size());
    const uint32_t number = mLayers.emplace(layer, index).first->second;
    mOpen[cookie] = {{timeNs, timeNs, verdictOf(presentType, jankType)}, number};
}

void FrameTimeline::end(int64_t timeNs, std::string_view frame) {
    pbf_message<perfetto::FrameEnd> fields(frame);
    int64_t cookie = 0;
    while (fields.next(perfetto::FrameEnd::Cookie, protozero::pbf_wire_type::varint))
        cookie = fields.get_int64();
    const auto open = mOpen.find(cookie);
    if (open == mOpen.end()) return;
    mFrames.push_back(open->second);
    mFrames.back().frame.endNs = timeNs;
    mOpen.erase(open);
}

std::vector<JudgedFrame> FrameTimeline::framesOf(const std::string& layer) const {
    std::vector<JudgedFrame> frames;
    const auto found = mLayers.find(layer);
    if (found == mLayers.end()) return frames;
    for (const LayerFrame& frame : mFrames) {
        if (frame.layer == found->second) frames.push_back(frame.frame);
    }
    return frames;
}

}  // namespace brevold::trace
