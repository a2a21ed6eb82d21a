#include "report/marked_perfetto.h"

#include <algorithm>
#include <map>
#include <protozero/pbf_builder.hpp>
#include <vector>

#include "report/added_marks.h"
#include "trace/perfetto_fields.h"
#include "trace/perfetto_packets.h"

namespace brevold::report {

namespace {

namespace perfetto = trace::perfetto;
using perfetto::TracePacket;
using perfetto::TrackDescriptor;
using protozero::pbf_builder;

/** Writes the packets of a new sequence; viewers drop events that belong to none. */
class SequenceWriter {
  public:
    SequenceWriter(const trace::TraceForm& form, std::ostream& out)
          : mPid(form.compositorPid),
            mSequenceId(std::max(form.lastSequenceId + 1, 1u)),
            mOut(out) {}

    void write(const AddedMarks& added) {
        const uint64_t process = describeProcess();
        std::vector<uint64_t> threads;
        for (const AddedThread& thread : added.threads)
            threads.push_back(describeThread(thread));
        std::map<std::string, uint64_t> counters;
        for (const AddedMark& mark : added.marks) {
            if (mark.kind != AddedMark::Kind::Counter) {
                writeEvent(mark, threads[mark.thread]);
                continue;
            }
            const auto [counter, isNew] = counters.emplace(mark.name, 0);
            if (isNew) counter->second = describeCounter(mark.name, process);
            writeEvent(mark, counter->second);
        }
    }

  private:
    // The sequence id makes the tracks differ from those of an earlier replay in the same trace.
    uint64_t newTrack() { return uint64_t{mSequenceId} << 32 | ++mTracks; }

    uint64_t describeProcess() {
        std::string bytes;
        pbf_builder<perfetto::ProcessDescriptor>(bytes).add_int32(perfetto::ProcessDescriptor::Pid,
                                                                  mPid);
        return describeTrack([&](pbf_builder<TrackDescriptor>& track) {
            track.add_message(TrackDescriptor::Process, bytes);
        });
    }

    uint64_t describeThread(const AddedThread& thread) {
        std::string bytes;
        pbf_builder<perfetto::ThreadDescriptor> descriptor(bytes);
        descriptor.add_int32(perfetto::ThreadDescriptor::Pid, mPid);
        descriptor.add_int32(perfetto::ThreadDescriptor::Tid, thread.tid);
        if (!thread.name.empty()) {
            descriptor.add_string(perfetto::ThreadDescriptor::ThreadName, thread.name);
        }
        return describeTrack([&](pbf_builder<TrackDescriptor>& track) {
            track.add_message(TrackDescriptor::Thread, bytes);
        });
    }

    uint64_t describeCounter(const std::string& name, uint64_t process) {
        return describeTrack([&](pbf_builder<TrackDescriptor>& track) {
            track.add_string(TrackDescriptor::Name, name);
            track.add_uint64(TrackDescriptor::ParentUuid, process);
            track.add_message(TrackDescriptor::Counter, std::string());
        });
    }

    template <typename AddFields>
    uint64_t describeTrack(AddFields addFields) {
        const uint64_t uuid = newTrack();
        std::string bytes;
        pbf_builder<TrackDescriptor> track(bytes);
        track.add_uint64(TrackDescriptor::Uuid, uuid);
        addFields(track);
        std::string packet;
        pbf_builder<TracePacket>(packet).add_message(TracePacket::TrackDescriptor, bytes);
        writePacket(std::move(packet));
        return uuid;
    }

    void writeEvent(const AddedMark& mark, uint64_t track) {
        std::string bytes;
        pbf_builder<perfetto::TrackEvent> event(bytes);
        event.add_enum(perfetto::TrackEvent::Type, typeOf(mark.kind));
        event.add_uint64(perfetto::TrackEvent::TrackUuid, track);
        if (mark.kind == AddedMark::Kind::Begin) {
            event.add_string(perfetto::TrackEvent::Name, mark.name);
        } else if (mark.kind == AddedMark::Kind::Counter) {
            event.add_int64(perfetto::TrackEvent::CounterValue, mark.value);
        }
        std::string packet;
        pbf_builder<TracePacket> fields(packet);
        fields.add_uint64(TracePacket::Timestamp, static_cast<uint64_t>(mark.timeNs));
        fields.add_uint32(TracePacket::TimestampClockId, perfetto::kBootClock);
        fields.add_message(TracePacket::TrackEvent, bytes);
        writePacket(std::move(packet));
    }

    static int32_t typeOf(AddedMark::Kind kind) {
        switch (kind) {
            case AddedMark::Kind::Begin:
                return perfetto::kSliceBegin;
            case AddedMark::Kind::End:
                return perfetto::kSliceEnd;
            case AddedMark::Kind::Counter:
                return perfetto::kCounter;
        }
        return 0;
    }

    void writePacket(std::string packet) {
        pbf_builder<TracePacket>(packet).add_uint32(TracePacket::SequenceId, mSequenceId);
        std::string bytes;
        pbf_builder<perfetto::Trace>(bytes).add_message(perfetto::Trace::Packet, packet);
        mOut << bytes;
    }

    const int32_t mPid;
    const uint32_t mSequenceId;
    std::ostream& mOut;
    uint32_t mTracks = 0;
};

}  // namespace

void writePerfetto(trace::ByteSource& packets, const std::string& path,
                   const trace::Timeline& timeline, const trace::TraceForm& form,
                   const replay::Recording& recording, std::ostream& out,
                   const std::vector<AddedTrack>& tracks) {
    trace::PacketReader reader(packets, path);
    for (std::string_view packet; reader.next(&packet);)
        out << reader.bytes();
    SequenceWriter(form, out).write(addedMarks(recording, form, timeline.endNs, tracks));
}

}  // namespace brevold::report
