#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "brevold/brevold.h"
#include "host/fake_perf_client.h"
#include "host/virtual_platform.h"

namespace brevold::host {

/** When the library's workers run. */
enum class Workers : uint8_t {
    Stepped,  // every call of the driver returns after the workers have sent its requests
    Free,     // the workers run concurrently; settle() waits for them
};

/**
 * Calls libbrevold as a compositor does, in virtual time: starts a fake device, looks up the
 * library's entry points by name, and calls them. It is also the worked example of how to bind the
 * library.
 *
 * The library keeps its state for the life of the process, so create one driver per process. Fill
 * the device profile first (host/device_profile.h). The program must export its symbols and link
 * virtual_platform. Use the driver from the main thread only. Times are nanoseconds and must not
 * decrease. takeLog() and takeTraceMarks() return the library's log lines and trace marks.
 */
class Driver {
  public:
    /** Opens the library and the fakes. Throws std::runtime_error if one cannot be opened. */
    explicit Driver(Workers workers);
    ~Driver();
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    /** Calls brevoldInit. Returns true if any feature is on. */
    bool init(int64_t timeNs);

    /** A layer queues a frame: calls brevoldOnFrameAvailable. */
    void frame(int64_t timeNs, LayerFrameInfo& info);

    /** The compositor begins a composition: calls brevoldRefresh. */
    void beginComposition(int64_t timeNs);

    /** The compositor ends a composition: calls brevoldScaling. Returns its result. */
    int endComposition(int64_t timeNs, int32_t queuedFrames, bool suppress = false);

    /** A vsync: calls brevoldMonitor. Returns its verdict. */
    bool vsync(int64_t timeNs, int32_t queuedFrames, int64_t periodNs);

    /** Returns the calls of the performance service since the last time, in order. */
    std::vector<ServiceCall> takeServiceCalls();

    /** Closes the library; call no entry point afterwards. Throws std::runtime_error. */
    void closeLibrary();

  private:
    struct EntryPoints;

    void finishCall();

    const Workers mWorkers;
    void* mHandle;
    std::unique_ptr<EntryPoints> mEntryPoints;
};

}  // namespace brevold::host
