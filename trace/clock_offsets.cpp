#include "trace/clock_offsets.h"

#include <protozero/pbf_message.hpp>

#include "trace/perfetto_fields.h"

namespace brevold::trace {

using protozero::pbf_message;

void ClockOffsets::add(std::string_view snapshot) {
    std::map<uint32_t, uint64_t> times;
    pbf_message<perfetto::ClockSnapshot> fields(snapshot.data(), snapshot.size());
    while (fields.next(perfetto::ClockSnapshot::Clocks,
                       protozero::pbf_wire_type::length_delimited)) {
        pbf_message<perfetto::Clock> clock(fields.get_view());
        uint32_t id = 0;
        uint64_t timeNs = 0;
        while (clock.next()) {
            switch (clock.tag_and_type()) {
                case varint(perfetto::Clock::ClockId):
                    id = clock.get_uint32();
                    break;
                case varint(perfetto::Clock::Timestamp):
                    timeNs = clock.get_uint64();
                    break;
                default:
                    clock.skip();
            }
        }
        times[id] = timeNs;
    }
    const auto boot = times.find(perfetto::kBootClock);
    if (boot == times.end()) return;
    for (const auto& [id, timeNs] : times)
        mOffsetsNs[id] = static_cast<int64_t>(boot->second - timeNs);
}

std::optional<int64_t> ClockOffsets::offsetToBootNs(uint32_t clockId) const {
    const auto offset = mOffsetsNs.find(clockId);
    if (offset == mOffsetsNs.end()) return std::nullopt;
    return offset->second;
}

}  // namespace brevold::trace
