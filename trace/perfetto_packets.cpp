#include "trace/perfetto_packets.h"

#include <fmt/format.h>

#include <algorithm>
#include <protozero/pbf_message.hpp>

#include "base/error.h"
#include "trace/perfetto_fields.h"

namespace brevold::trace {
namespace {

using perfetto::TracePacket;

constexpr size_t kPacketBlockBytes = 64 * 1024;
// Recorders split what they write into packets of far less than this.
constexpr size_t kMaxPacketBytes = size_t{256} << 20;
constexpr char kPacketTag = static_cast<char>(perfetto::bytes(perfetto::Trace::Packet));

enum class Header : uint8_t { Whole, CutShort, Wrong };

/** Takes the tag and the length of a packet from the beginning of `bytes`. */
Header takeHeader(std::string_view* bytes, uint64_t* length) {
    if (bytes->empty()) return Header::CutShort;
    if (bytes->front() != kPacketTag) return Header::Wrong;
    const char* position = bytes->data() + 1;
    try {
        *length = protozero::decode_varint(&position, bytes->data() + bytes->size());
    } catch (const protozero::end_of_buffer_exception&) {
        return Header::CutShort;
    } catch (const protozero::exception&) {
        return Header::Wrong;
    }
    bytes->remove_prefix(static_cast<size_t>(position - bytes->data()));
    return Header::Whole;
}

/** The wire type of the fields known here; `unknown` for all others. */
protozero::pbf_wire_type typeOf(TracePacket field) {
    switch (field) {
        case TracePacket::TrustedUid:
        case TracePacket::Timestamp:
        case TracePacket::SequenceId:
        case TracePacket::TimestampClockId:
            return protozero::pbf_wire_type::varint;
        case TracePacket::FtraceEvents:
        case TracePacket::ProcessTree:
        case TracePacket::ClockSnapshot:
        case TracePacket::TrackEvent:
        case TracePacket::FtraceStats:
        case TracePacket::CompressedPackets:
        case TracePacket::TrackDescriptor:
        case TracePacket::FrameTimelineEvent:
            return protozero::pbf_wire_type::length_delimited;
    }
    return protozero::pbf_wire_type::unknown;
}

/** Returns true if the packet is well-formed and the fields known here have their type. */
bool isTracePacket(std::string_view packet, bool isWhole) {
    try {
        protozero::pbf_message<TracePacket> fields(packet);
        while (fields.next()) {
            const protozero::pbf_wire_type type = typeOf(fields.tag());
            const bool isKnown = type != protozero::pbf_wire_type::unknown;
            if (isKnown && fields.wire_type() != type) return false;
            fields.skip();
        }
    } catch (const protozero::end_of_buffer_exception&) {
        return !isWhole;
    } catch (const protozero::exception&) {
        return false;
    }
    return true;
}

/** No text has bytes of this kind, but every packet has small numbers. */
bool isBinary(std::string_view head) {
    return std::any_of(head.begin(), head.end(), [](char c) { return c >= 0 && c < '\t'; });
}

}  // namespace

bool beginsAsPerfetto(std::string_view head) {
    if (!isBinary(head)) return false;
    while (!head.empty()) {
        uint64_t length;
        const Header header = takeHeader(&head, &length);
        if (header != Header::Whole) return header == Header::CutShort;
        const std::string_view packet = head.substr(0, length);
        if (!isTracePacket(packet, packet.size() == length)) return false;
        head.remove_prefix(packet.size());
    }
    return true;
}

PacketReader::PacketReader(ByteSource& source, std::string path)
      : mSource(source), mPath(std::move(path)), mBuffer(kPacketBlockBytes, '\0') {}

bool PacketReader::next(std::string_view* packet) {
    for (;;) {
        std::string_view rest(mBuffer.data() + mBegin, mEnd - mBegin);
        uint64_t length;
        const Header header = takeHeader(&rest, &length);
        if (header == Header::Wrong) {
            throw InputError(
                    fmt::format("{}: expected a packet of a Perfetto trace at byte {}, got other "
                                "data; copy the file again",
                                mPath, mBytesTaken));
        }
        if (header == Header::Whole && length <= rest.size()) {
            *packet = rest.substr(0, length);
            const char* const begin = mBuffer.data() + mBegin;
            mBytes = {begin, static_cast<size_t>(packet->data() + packet->size() - begin)};
            mBegin += mBytes.size();
            mBytesTaken += static_cast<int64_t>(mBytes.size());
            return true;
        }
        if (!fill()) return false;
    }
}

bool PacketReader::fill() {
    std::copy(mBuffer.data() + mBegin, mBuffer.data() + mEnd, mBuffer.data());
    mEnd -= mBegin;
    mBegin = 0;
    if (mEnd == mBuffer.size()) {
        if (mEnd >= kMaxPacketBytes) {
            throw InputError(
                    fmt::format("{}: expected a packet of at most {} bytes at byte {}, got a "
                                "longer one; copy the file again",
                                mPath, kMaxPacketBytes, mBytesTaken));
        }
        mBuffer.resize(2 * mBuffer.size());
    }
    const size_t count = mSource.read(mBuffer.data() + mEnd, mBuffer.size() - mEnd);
    mEnd += count;
    return count > 0;
}

}  // namespace brevold::trace
