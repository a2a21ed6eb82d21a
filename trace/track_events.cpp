#include "trace/track_events.h"

#include <protozero/pbf_message.hpp>

#include "trace/perfetto_fields.h"

namespace brevold::trace {

using perfetto::ThreadDescriptor;
using perfetto::TrackDescriptor;
using perfetto::TrackEvent;
using protozero::pbf_message;

void TrackEvents::addTrack(std::string_view descriptor) {
    uint64_t track = 0;
    std::string_view threadBytes;
    pbf_message<TrackDescriptor> fields(descriptor);
    while (fields.next()) {
        if (fields.tag_and_type() == varint(TrackDescriptor::Uuid)) {
            track = fields.get_uint64();
        } else if (fields.tag_and_type() == bytes(TrackDescriptor::Thread)) {
            threadBytes = fields.get_view();
        } else {
            fields.skip();
        }
    }
    if (threadBytes.empty()) return;
    Thread& thread = mThreads[track];
    pbf_message<ThreadDescriptor> ids(threadBytes);
    while (ids.next()) {
        if (ids.tag_and_type() == varint(ThreadDescriptor::Pid)) {
            thread.pid = ids.get_int32();
        } else if (ids.tag_and_type() == varint(ThreadDescriptor::Tid)) {
            thread.tid = ids.get_int32();
        } else {
            ids.skip();
        }
    }
}

void TrackEvents::addEvent(int64_t timeNs, std::string_view event) {
    int32_t type = 0;
    uint64_t track = 0;
    TraceMark mark = {};
    pbf_message<TrackEvent> fields(event);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case varint(TrackEvent::Type):
                type = fields.get_enum();
                break;
            case varint(TrackEvent::TrackUuid):
                track = fields.get_uint64();
                break;
            case bytes(TrackEvent::Name):
                mark.name = fields.get_view();
                break;
            default:
                fields.skip();
        }
    }
    const auto thread = mThreads.find(track);
    if (thread == mThreads.end() || timeNs < 0) return;
    if (type != perfetto::kSliceBegin && type != perfetto::kSliceEnd) return;
    mark.kind = type == perfetto::kSliceBegin ? TraceMark::Kind::Begin : TraceMark::Kind::End;
    mark.timeNs = timeNs;
    mark.pid = thread->second.pid;
    mark.tid = thread->second.tid;
    mSections.add(mark);
}

}  // namespace brevold::trace
