#pragma once

#include <cstdint>
#include <string_view>

namespace brevold::trace {

/** The possible meaning of a counter, by its name. */
enum class CounterRole : uint8_t {
    Candidate,  // may be a layer
    BufferTx,
    Vsync,
    SetPeriod,        // "VSR-setPeriod": the refresh period
    DisplayMode,      // "VSR-onDisplayModeChanged 4619827259835644672": that of one display
    PredictedPeriod,  // "VSP-period", may be with a display: the period as measured
    Unrelated
};

/** Android 12 and later put this before the layer's name. */
constexpr std::string_view kBufferTxPrefix = "BufferTX - ";

CounterRole roleOf(std::string_view counter);

/** Returns the digits after the last blank or underscore, or an empty text if there are none. */
std::string_view displayIdOf(std::string_view counter);

}  // namespace brevold::trace
