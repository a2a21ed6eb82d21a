#pragma once

#include <cstdint>
#include <string_view>

namespace brevold::trace {

/** The possible meaning of a counter, by its name. */
enum class CounterRole : uint8_t { Candidate, BufferTx, Vsync, SetPeriod, Unrelated };

/** Android 12 and later put this before the layer's name. */
constexpr std::string_view kBufferTxPrefix = "BufferTX - ";
/** Its values are refresh periods in ns. */
constexpr std::string_view kSetPeriodCounter = "VSR-setPeriod";

CounterRole roleOf(std::string_view counter);

}  // namespace brevold::trace
