#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/driver.h"
#include "host/hint.h"

namespace brevold::sim {

/** Name of the simulated application's layer. */
constexpr char kLayerName[] = "com.example.sim/com.example.sim.Main#0";

/**
 * The real library, as the simulated compositor calls it. Its settings are those of the device
 * profile. One per process. Times are nanoseconds above 0.
 */
class Library {
  public:
    /** Loads and initialises the library. Throws std::runtime_error. */
    explicit Library(int64_t nowNs);

    /** The application queued a frame; `depth` includes it. */
    void reportFrame(int64_t nowNs, int32_t depth, int64_t periodNs);
    void beginComposition(int64_t nowNs);
    void endComposition(int64_t nowNs, int32_t depth);
    void vsync(int64_t nowNs, int32_t depth, int64_t periodNs);

    /** Hints since the last call, in order. */
    std::vector<host::Hint> takeHints();

    /** The frame-rate mode; none if the library does not report it. */
    std::optional<int32_t> mode() const;

  private:
    void readModes();

    host::Driver mDriver;
    LayerFrameInfo mFrame = {};
    int64_t mLastCompositionNs = 0;
    int32_t mMode;
    bool mReportsModes = false;
};

}  // namespace brevold::sim
