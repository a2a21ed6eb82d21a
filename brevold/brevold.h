#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#define BREVOLD_EXPORT __attribute__((visibility("default")))

/**
 * One frame of one layer, as the compositor reports it. The compositor fills and owns the record;
 * the library reads it during the call and keeps no pointer to it. All times are nanoseconds of
 * CLOCK_MONOTONIC. The layout, including that of the strings, is shared with the compositor.
 */
struct LayerFrameInfo {
    uint8_t reserved0[2];
    /** If not zero, the layer is neither classified nor tracked. */
    uint8_t skipLayerCheck;
    uint8_t reserved1;
    /** Two opaque identity values of the layer; they are only compared for equality. */
    int32_t layerKeyB;
    int32_t layerKeyA;
    /** Largest number of frames in the layer's buffer queue. */
    int32_t lastMaxQueuedFrames;
    uint8_t reserved2[8];
    /** Headroom is monitored only if this equals layerName. */
    std::string peerLayerName;
    std::string layerName;
    /** Time at which this frame was queued. */
    int64_t qbTime;
    /** Time at which the previous frame was queued, or -1 if there is none. */
    int64_t lastQbTime;
    /** The compositor's time stamp of this frame. */
    int64_t sfTime;
    int64_t reserved3[2];
    /** Current display refresh period. */
    int64_t refreshPeriod;
};

#ifdef _LIBCPP_VERSION
// offsetof on a type with strings is conditionally supported; clang supports it.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Winvalid-offsetof"
static_assert(sizeof(std::string) == 24);
static_assert(offsetof(LayerFrameInfo, skipLayerCheck) == 2);
static_assert(offsetof(LayerFrameInfo, layerKeyB) == 4);
static_assert(offsetof(LayerFrameInfo, layerKeyA) == 8);
static_assert(offsetof(LayerFrameInfo, lastMaxQueuedFrames) == 12);
static_assert(offsetof(LayerFrameInfo, peerLayerName) == 24);
static_assert(offsetof(LayerFrameInfo, layerName) == 48);
static_assert(offsetof(LayerFrameInfo, qbTime) == 72);
static_assert(offsetof(LayerFrameInfo, lastQbTime) == 80);
static_assert(offsetof(LayerFrameInfo, sfTime) == 88);
static_assert(offsetof(LayerFrameInfo, refreshPeriod) == 112);
static_assert(sizeof(LayerFrameInfo) == 120);
#pragma clang diagnostic pop
#endif

// The mangled names of the entry points are those of a device, where int64_t is a long.
static_assert(std::is_same_v<int64_t, long>);

extern "C" {

/**
 * Reads the settings, binds the performance service and, if energy scaling is on, starts the two
 * workers. Only the first call, and the first after clearConfigs(), does this; other calls only
 * return the result. Call it before any other entry point and not concurrently with one; concurrent
 * calls of brevoldInit itself are safe. Any thread. Blocks while another brevoldInit runs, and on
 * file and property access.
 *
 * @return true if jank boost, energy scaling or the refresh-rate hint is on. If false, the entry
 *         points called for frames, refresh ticks and vsyncs never make a request.
 */
BREVOLD_EXPORT bool brevoldInit();

/**
 * Returns true if the library currently acts for the compositor thread with this name: energy
 * scaling is on, the current application is of the target type, and the name begins with "sf" in
 * lower case. Any thread; takes no lock and does not block.
 *
 * @param name may be null, which returns false.
 */
BREVOLD_EXPORT bool brevoldCheck(const char* name);

/**
 * Reports a new frame. One calling thread at a time. May block on gLock, on the "QB" worker while
 * it sends a hint, and in the service after a change of the refresh rate (hint 4244) or of the
 * layer name (query 5633). Aborts the process if a difference of two stamps overflows.
 *
 * @param info is read during the call only. If null, nothing is reported.
 * @return always 0.
 */
BREVOLD_EXPORT int brevoldOnFrameAvailable(LayerFrameInfo* info);

/**
 * Returns the verdict at a vsync. It is 1 if jank boost is on, a target application shows an
 * unchanged layer, the display runs at 60 Hz, the frame-rate mode is 0 or 1, the last refresh tick
 * was less than 18 ms ago and the queue was not busy both now and at the previous call; else 0.
 * Any thread; blocks on gLock only.
 *
 * @param queuedFrames number of queued frames; the queue is busy from 2 on.
 * @param periodNs refresh period in nanoseconds; the verdict is 0 outside 16000001..16999999.
 */
BREVOLD_EXPORT int brevoldMonitor(int queuedFrames, int64_t periodNs);

/**
 * Posts a jank boost after composition if energy scaling is on, the application is a target, its
 * frame-rate mode matches the refresh rate, and two or more frames are queued. In mode 1 at 60 Hz,
 * three or more must be queued and jank boost or smooth motion must be on. Any thread; blocks on
 * gLock and, when it posts, on the "SF" worker while that sends a hint. It holds gLock all the
 * time, so every other caller that needs gLock waits as well.
 *
 * @param queuedFrames number of queued frames.
 * @param suppress if not zero, nothing is posted.
 * @return the status of unlocking gLock, 0 on success. It does not depend on the decision.
 */
BREVOLD_EXPORT int brevoldScaling(int queuedFrames, int suppress);

/**
 * Reports a refresh tick: updates the frame-rate window and withdraws a pending jank boost. Call it
 * once per refresh, always from the same thread. Blocks on gLock about once a second and after an
 * idle gap, and on the "SF" worker while it sends a hint.
 */
BREVOLD_EXPORT void brevoldRefresh();

}  // extern "C"

namespace android {

/**
 * Opens the client library of the performance service again, without looking up its functions. The
 * library never closes the handle. Any thread; may block on file access.
 *
 * @return the dlopen handle, or null after logging the reason.
 */
BREVOLD_EXPORT void* getOptHandle();

/**
 * Opens the client library and binds its four functions for the whole library. Called by
 * brevoldInit; must not run concurrently with other entry points. May block on file access.
 *
 * @return the dlopen handle, or null after logging the reason; the functions then stay as they are.
 */
BREVOLD_EXPORT void* initPerfLock();

/**
 * Posts a scaling request to a worker. It replaces a request that has not been sent yet. Does
 * nothing while energy scaling is off. Any thread; blocks while that worker sends a hint.
 *
 * @param scale is sent in thousandths, truncated to 16 bits: 65.536 wraps to 0; negative values and
 *        NaN give 0.
 * @param direction 1 scales down, 2 scales up, 0 posts nothing.
 * @param boostLevel any value but 0 counts as a boost request.
 * @param channel 0 is the "SF" worker, 1 the "QB" worker; any other value posts nothing.
 */
BREVOLD_EXPORT void energyScaling(float scale, unsigned int direction, unsigned int boostLevel,
                                  int channel);

/**
 * Withdraws a pending jank boost; the "SF" worker then sends the release. Call it only after an
 * initialisation that turned energy scaling on. Any thread; blocks while that worker sends a hint.
 */
BREVOLD_EXPORT void releaseScaling();

/**
 * Adds the time since the previous refresh tick to the frame-rate window. Called by brevoldRefresh,
 * on its thread. Blocks on gLock when a window closes and after an idle gap.
 *
 * @param intervalNs nanoseconds. 150 ms or more is an idle gap. 0 and less counts as a tick only
 *        while a window is open.
 */
BREVOLD_EXPORT void modeMonitor(int64_t intervalNs);

/**
 * Returns the application's package name from a layer name, for example "com.example" from
 * "SurfaceView - com.example/com.example.Main#0". Any thread; does not block.
 *
 * @return empty if the layer name does not end in "#" and digits, or contains no package name.
 */
BREVOLD_EXPORT std::string getPackageName(const std::string& layerName);

/**
 * Appends the names in a list to a vector. A single blank separates two names, so a leading blank
 * and a second blank in a row each add an empty name. Not thread-safe; does not block.
 *
 * @param list NUL-terminated; must not be null.
 */
BREVOLD_EXPORT void addDebugLayers(char* list, std::vector<std::string>& out);

/**
 * Returns true if the debug layer list contains exactly this name. The library ignores such layers.
 * Any thread, but not during brevoldInit; does not block.
 */
BREVOLD_EXPORT bool isDebugLayer(std::string name);

/**
 * Turns every switch off and forgets all measurements; the next brevoldInit starts again. Keeps the
 * workers, the service's functions, the debug layer list, the name of the current layer and the
 * held refresh-rate hint. The library itself never releases a jank boost that is held across this
 * call; only releaseScaling(), called before the next brevoldInit, still does. Must not run
 * concurrently with other entry points; does not block.
 */
BREVOLD_EXPORT void clearConfigs();

/**
 * Asks the service for the application type if the layer name is not that of the current layer.
 * Does nothing for a debug layer, for a name without a package name, and if the service's function
 * is missing. One calling thread at a time; takes no lock, may block in the service (query 5633).
 */
BREVOLD_EXPORT void brevoldAppTypeCheck(std::string layerName);

/**
 * Tracks the current layer. A layer with another name or identity value becomes the current layer
 * and resets the frame-rate mode. Any thread; blocks on gLock only.
 *
 * @param skip if true, nothing changes.
 * @param keyA, keyB identity values, only compared for equality.
 */
BREVOLD_EXPORT void brevoldLayerStatusCheck(bool skip, std::string layerName, int keyA, int keyB);

/**
 * Computes the headroom of a frame and posts a DOWN request (two or more frames queued) or an UP
 * request (one frame queued) to the "QB" worker. One calling thread at a time; blocks while that
 * worker sends a hint. All times are nanoseconds. Aborts the process if the headroom overflows.
 *
 * @param lastMaxQueuedFrames number of queued frames; nothing is decided for 0 or less.
 * @param peerLayerName nothing is decided unless it equals layerName.
 * @param diffSFToQB from the compositor's stamp to the queueing of this frame.
 * @param diffQB from the queueing of the previous frame to that of this frame.
 * @param sfTime the compositor's stamp of this frame; nothing is decided if that of the previous
 *        frame was 0.
 * @param reserved not read.
 * @param refreshPeriod display refresh period; nothing is decided unless the frame-rate mode
 *        matches it.
 */
BREVOLD_EXPORT void brevoldBufferMonitor(int lastMaxQueuedFrames, std::string peerLayerName,
                                         std::string layerName, int64_t diffSFToQB, int64_t diffQB,
                                         int64_t sfTime, int64_t reserved, int64_t refreshPeriod);

/**
 * Follows the display's refresh rate. When the period enters another of the 60, 90 and 120 Hz
 * bands, releases the held hint and sends a new one; a hint that failed is sent again. One calling
 * thread at a time; takes no lock, may block in the service (hint 4244).
 *
 * @param info a LayerFrameInfo; only refreshPeriod is read. If null, nothing happens.
 */
BREVOLD_EXPORT void checkRefreshRateChange(void* info);

}  // namespace android
