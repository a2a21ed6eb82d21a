#pragma once

#include <protozero/pbf_writer.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tests/packed.h"

/** Writes protobuf messages, and the packets of Perfetto traces, for tests. */
namespace brevold::test {

/** A message; each call adds a field by its number. */
class Proto {
  public:
    Proto& number(uint32_t field, uint64_t value) {
        protozero::pbf_writer(mBytes).add_uint64(field, value);
        return *this;
    }
    Proto& text(uint32_t field, std::string_view value) {
        protozero::pbf_writer(mBytes).add_bytes(field, value.data(), value.size());
        return *this;
    }
    /** The message begins and ends with fields that no reader knows. */
    Proto& message(uint32_t field, const Proto& value) {
        const Proto unknown = Proto().number(900, 1).text(901, "unknown");
        return text(field, unknown.mBytes + value.mBytes + unknown.mBytes);
    }
    Proto& append(const Proto& other) {
        mBytes += other.mBytes;
        return *this;
    }

    const std::string& bytes() const { return mBytes; }

  private:
    std::string mBytes;
};

/** A trace with one packet; traces can be concatenated. */
inline std::string packet(const Proto& fields) {
    return Proto().message(1, Proto(fields).number(10, 7)).bytes();
}

/** An event of ftrace: a print of `mark`, or a context switch if that is empty. */
inline Proto ftraceEvent(uint64_t timeNs, int32_t tid, const std::string& mark) {
    Proto event;
    event.number(1, timeNs).number(2, static_cast<uint64_t>(tid));
    if (mark.empty()) return event.message(4, Proto().text(1, "from").number(2, 5));
    return event.message(3, Proto().number(1, 0xffff'ff80'0000'0000).text(2, mark + "\n"));
}

/** A packet's fields with a bundle of ftrace events; `rest` follows them in the bundle. */
inline Proto ftraceBundle(const std::vector<Proto>& events, const Proto& rest = {}) {
    Proto bundle = Proto().number(1, 0);
    for (const Proto& event : events)
        bundle.message(2, event);
    return Proto().message(1, bundle.append(rest));
}

/** A packet's fields with these packets, compressed. */
inline Proto compressedPackets(const std::string& packets) {
    return Proto().text(50, zlib(packets));
}

/** A packet's fields with a snapshot of two clocks at the same instant. */
inline Proto clockSnapshot(uint64_t clockId, uint64_t timeNs, uint64_t bootNs) {
    const auto clock = [](uint64_t id, uint64_t ns) { return Proto().number(1, id).number(2, ns); };
    return Proto().message(
            6,
            Proto().message(1, clock(clockId, timeNs)).message(1, clock(6, bootNs)).number(2, 6));
}

}  // namespace brevold::test
