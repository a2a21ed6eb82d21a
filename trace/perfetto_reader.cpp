#include "trace/perfetto_reader.h"

#include <algorithm>
#include <protozero/pbf_message.hpp>

#include "base/error.h"
#include "trace/gzip_source.h"
#include "trace/perfetto_fields.h"
#include "trace/perfetto_metadata.h"
#include "trace/perfetto_packets.h"
#include "trace/scheduler_events.h"
#include "trace/string_source.h"

namespace brevold::trace {

using perfetto::TracePacket;

PerfettoReader::PerfettoReader(ByteSource& trace, std::string path, LibrarySections* sections)
      : mTrace(trace), mPath(std::move(path)), mExpansion(mPath) {
    if (sections != nullptr) mTrackEvents.emplace(*sections);
}

PerfettoReader::PerfettoReader(ByteSource& trace, std::string path, Activity* activity)
      : mTrace(trace),
        mPath(std::move(path)),
        mActivity(activity),
        mBundles(activity),
        mExpansion(mPath) {}

bool PerfettoReader::next(TraceMark* mark) {
    if (!mIsRead) readAll();
    return mBundles.marks().next(mark);
}

void PerfettoReader::readAll() {
    mIsRead = true;
    PacketReader packets(mTrace, mPath);
    for (std::string_view packet; packets.next(&packet);)
        readPacket(packet);
    mIsCutShort = packets.isCutShort();
    if (mBundles.events() == 0) {
        throw InputError(mPath +
                         ": expected a Perfetto trace with ftrace events, got none; was "
                         "the data source \"linux.ftrace\" on?");
    }
    for (const int32_t id : mBundles.threads())
        mForm.threads[id];
}

void PerfettoReader::readPacket(std::string_view packet) {
    try {
        readFields(packet);
    } catch (const protozero::exception&) {
        ++mDamagedPackets;
    }
}

void PerfettoReader::readFields(std::string_view packet) {
    uint64_t timeNs = 0;
    uint32_t clockId = perfetto::kBootClock;
    std::string_view frame;
    std::string_view trackDescriptor;
    std::string_view trackEvent;
    protozero::pbf_message<TracePacket> fields(packet);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case bytes(TracePacket::FtraceEvents):
                mBundles.add(fields.get_view(), mClocks);
                break;
            case bytes(TracePacket::ProcessTree): {
                const std::string_view tree = fields.get_view();
                addProcessTree(tree, &mForm.threads);
                if (mActivity != nullptr) addThreadProcesses(tree, mActivity);
                break;
            }
            case bytes(TracePacket::ClockSnapshot):
                mClocks.add(fields.get_view());
                break;
            case bytes(TracePacket::FtraceStats):
                mLossyProcessors =
                        std::max(mLossyProcessors, countLossyProcessors(fields.get_view()));
                break;
            case bytes(TracePacket::CompressedPackets):
                readCompressed(fields.get_view());
                break;
            case bytes(TracePacket::TrackDescriptor):
                trackDescriptor = fields.get_view();
                break;
            case bytes(TracePacket::TrackEvent):
                trackEvent = fields.get_view();
                break;
            case bytes(TracePacket::FrameTimelineEvent):
                frame = fields.get_view();
                break;
            case varint(TracePacket::Timestamp):
                timeNs = fields.get_uint64();
                break;
            case varint(TracePacket::TimestampClockId):
                clockId = fields.get_uint32();
                break;
            case varint(TracePacket::SequenceId):
                mForm.lastSequenceId = std::max(mForm.lastSequenceId, fields.get_uint32());
                break;
            default:
                fields.skip();
        }
    }
    if (!trackDescriptor.empty()) {
        addTrackThread(trackDescriptor, &mForm.threads);
        if (mTrackEvents) mTrackEvents->addTrack(trackDescriptor);
    }
    const bool hasSectionMark = mTrackEvents && !trackEvent.empty();
    if (frame.empty() && !hasSectionMark) return;
    const auto offsetNs = static_cast<uint64_t>(mClocks.offsetToBootNs(clockId).value_or(0));
    const auto bootNs = static_cast<int64_t>(timeNs + offsetNs);
    if (!frame.empty()) mFrames.add(bootNs, frame);
    if (hasSectionMark) mTrackEvents->addEvent(bootNs, trackEvent);
}

void PerfettoReader::readCompressed(std::string_view bytes) {
    // Recorders compress once; more would only exhaust the stack.
    if (mIsCompressed) return;
    GzipSource plain(std::make_unique<StringSource>(std::string(bytes)), mPath,
                     GzipSource::Format::Zlib);
    PacketReader packets(plain, mPath);
    bool isDamaged = false;
    const auto next = [&](std::string_view* packet) {
        try {
            return packets.next(packet);
        } catch (const InputError&) {
            isDamaged = true;
            return false;
        }
    };
    mIsCompressed = true;
    for (std::string_view packet; next(&packet);) {
        mExpansion.add(packets.bytes().size(), mTrace.inputBytes());
        readPacket(packet);
    }
    mIsCompressed = false;
    if (isDamaged || packets.isCutShort()) ++mDamagedPackets;
}

std::vector<TraceWarning> PerfettoReader::warnings() const {
    using Kind = TraceWarning::Kind;
    std::vector<TraceWarning> warnings;
    const auto add = [&warnings](Kind kind, int64_t count) {
        addWarning(kind, {count, 0}, &warnings);
    };
    add(Kind::IncompletePacket, mIsCutShort ? 1 : 0);
    add(Kind::DamagedPacket, mDamagedPackets);
    add(Kind::LossyBundle, mBundles.lossyBundles());
    add(Kind::LossyProcessor, mLossyProcessors);
    add(Kind::UnknownClock, mBundles.unknownClocks());
    add(Kind::OutOfOrderEvent, mBundles.outOfOrderEvents());
    add(Kind::BadCounterValue, mBundles.badCounters());
    return warnings;
}

}  // namespace brevold::trace
