#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#define BREVOLD_EXPORT __attribute__((visibility("default")))

/**
 * What the compositor reports of one frame of one layer. The compositor fills and owns the record;
 * the library reads it during the call and keeps no pointer to it. All times are nanoseconds of
 * CLOCK_MONOTONIC. Compositor and library share the layout, the strings' three words included.
 */
struct LayerFrameInfo {
    uint8_t reserved0[2];
    /** Non-zero: the layer is neither classified nor tracked. */
    uint8_t skipLayerCheck;
    uint8_t reserved1;
    /** Two opaque identity values of the layer, compared for equality only. */
    int32_t layerKeyB;
    int32_t layerKeyA;
    /** Largest number of frames that stood queued in the layer's buffer queue. */
    int32_t lastMaxQueuedFrames;
    uint8_t reserved2[8];
    /** Headroom is monitored only when this equals layerName. */
    std::string peerLayerName;
    std::string layerName;
    /** When this frame was queued. */
    int64_t qbTime;
    /** When the previous frame was queued; -1: there is none. */
    int64_t lastQbTime;
    /** The compositor's stamp of this frame. */
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

// The entry points' mangled names are a device's: a 64-bit count is a long there.
static_assert(std::is_same_v<int64_t, long>);

extern "C" {

/**
 * Reads the switches, binds the performance service and, with energy scaling on, starts the two
 * workers. Only the first call, or the first after clearConfigs(), does the work; later calls only
 * answer. Call it before any other entry, from any thread; it may block on file and property
 * access, and on another brevoldInit. Must not run concurrently with the other entries.
 *
 * @return true when any of jank boost, energy scaling and the refresh-rate hint is on. While it is
 *         false no entry that is called for a frame, a tick or a vsync makes a request.
 */
BREVOLD_EXPORT bool brevoldInit();

/**
 * Whether the library acts for the compositor thread of that name now.
 *
 * @param name compared by its first two characters with "sf", case-sensitive; null gives false.
 * @return true when energy scaling is on, the current application is of the target type and the
 *         name matches. Any thread; takes no lock, does not block.
 */
BREVOLD_EXPORT bool brevoldCheck(const char* name);

/**
 * Reports one new frame. One caller thread at a time. May block for gLock, for the "QB" worker
 * while it is sending a hint, and in the service on a change of refresh rate (hint 4244) or of
 * layer name (query 5633). A difference of two stamps that overflows aborts the process.
 *
 * @param info read during the call only; null reports nothing.
 * @return always 0.
 */
BREVOLD_EXPORT int brevoldOnFrameAvailable(LayerFrameInfo* info);

/**
 * The verdict at a vsync: 1 when, with jank boost on, a target application on an unchanged layer,
 * at 60 Hz and in one of the two lowest frame-rate modes, is shortly past a refresh tick with a
 * queue that was not busy twice in a row; else 0. Any thread; blocks for gLock only.
 *
 * @param queuedFrames frames now queued; 2 or more counts as busy, also for the next call.
 * @param periodNs current refresh period in nanoseconds; outside 16000001..16999999 gives 0.
 */
BREVOLD_EXPORT int brevoldMonitor(int queuedFrames, int64_t periodNs);

/**
 * After composition: posts a jank boost when, with energy scaling on, a target application at a
 * steady refresh rate has two or more frames queued (in mode 1 three or more, and only with jank
 * boost or smooth motion on). Any thread; blocks for gLock and, when it posts, for the "SF" worker
 * while that is sending a hint. It holds gLock meanwhile, so whoever blocks for gLock waits as
 * long.
 *
 * @param queuedFrames frames now queued.
 * @param suppress non-zero: decide, but post nothing.
 * @return the status of releasing gLock, 0 on success. It says nothing about the decision.
 */
BREVOLD_EXPORT int brevoldScaling(int queuedFrames, int suppress);

/**
 * A refresh tick: feeds the frame-rate window and withdraws a pending jank boost. Call it once per
 * refresh, always from the same thread. Blocks for gLock about once a second and after an idle
 * gap, and for the "SF" worker while it is sending a hint.
 */
BREVOLD_EXPORT void brevoldRefresh();

}  // extern "C"

namespace android {

/**
 * Opens the performance service's client library once more, resolving nothing. Any thread; may
 * block on file access. Never closed by the library.
 *
 * @return the dlopen handle, or null after logging the reason.
 */
BREVOLD_EXPORT void* getOptHandle();

/**
 * Opens the client library and resolves its four functions for the whole library. brevoldInit calls
 * it; must not run concurrently with other entries. May block on file access.
 *
 * @return the dlopen handle, or null after logging the reason (the functions stay as they were).
 */
BREVOLD_EXPORT void* initPerfLock();

/**
 * Posts a scaling request to a worker, overwriting one that is not yet sent. Dropped silently while
 * energy scaling is off. Any thread; blocks while that worker is sending a hint.
 *
 * @param scale sent in thousandths, in 16 bits: 65.536 wraps to 0, negative and NaN give 0.
 * @param direction 1 scales down, 2 scales up, 0 makes the call do nothing.
 * @param boostLevel non-zero counts as a boost request.
 * @param channel 0 is the "SF" worker, 1 the "QB" worker; anything else drops the request.
 */
BREVOLD_EXPORT void energyScaling(float scale, unsigned int direction, unsigned int boostLevel,
                                  int channel);

/**
 * Withdraws a pending jank boost, so that the "SF" worker sends its release. Only after an
 * initialisation that turned energy scaling on. Any thread; blocks while that worker is sending.
 */
BREVOLD_EXPORT void releaseScaling();

/**
 * Feeds the frame-rate window with the time since the previous refresh tick. brevoldRefresh calls
 * it, on its thread. Blocks for gLock when a window closes or after an idle gap.
 *
 * @param intervalNs nanoseconds; 150 ms and more is an idle gap, 0 and less counts as a tick while
 *        a window is open.
 */
BREVOLD_EXPORT void modeMonitor(int64_t intervalNs);

/**
 * The application's package name of a layer name such as
 * "SurfaceView - com.example/com.example.Main#0" (here: com.example). Any thread; does not block.
 *
 * @return the package name; empty when the name does not end in "#" and digits, or has none.
 */
BREVOLD_EXPORT std::string getPackageName(const std::string& layerName);

/**
 * Appends the names in a list, separated by single blanks, to a vector. Two blanks in a row, and a
 * blank at the start, give an empty name. Not thread-safe; does not block.
 *
 * @param list NUL-terminated; must not be null.
 */
BREVOLD_EXPORT void addDebugLayers(char* list, std::vector<std::string>& out);

/**
 * Whether a layer stands in the debug layer list, by its whole name. Such layers are ignored. Any
 * thread, but not during brevoldInit; does not block.
 */
BREVOLD_EXPORT bool isDebugLayer(std::string name);

/**
 * Turns every switch off and forgets what was measured, so that the next brevoldInit works anew.
 * Keeps the workers, the service's functions, the debug layer list, the current layer's name and
 * the held refresh-rate hint. Must not run concurrently with other entries; does not block.
 */
BREVOLD_EXPORT void clearConfigs();

/**
 * Asks the service for the application type of a layer whose name differs from the current one; not
 * of a debug layer, of one without a package name, or without the service's function.
 * One caller thread at a time; takes no lock, may block in the service (query 5633).
 */
BREVOLD_EXPORT void brevoldAppTypeCheck(std::string layerName);

/**
 * Tracks the current layer: a new name or identity value makes it the current one and forgets the
 * frame-rate mode. Any thread; blocks for gLock only.
 *
 * @param skip true: nothing changes.
 * @param keyA, keyB identity values, compared for equality only.
 */
BREVOLD_EXPORT void brevoldLayerStatusCheck(bool skip, std::string layerName, int keyA, int keyB);

/**
 * Works out the headroom of one frame and posts a DOWN request (two or more frames queued) or an UP
 * request (one) to the "QB" worker. One caller thread at a time; blocks while that worker is
 * sending a hint. All times in nanoseconds; a headroom that overflows aborts the process.
 *
 * @param lastMaxQueuedFrames frames queued; 0 and less decides nothing.
 * @param peerLayerName must equal layerName for anything to be decided.
 * @param diffSFToQB from the compositor's stamp to the queueing of this frame.
 * @param diffQB from the queueing of the previous frame to that of this one.
 * @param sfTime the compositor's stamp of this frame, kept for the next call.
 * @param reserved not read.
 * @param refreshPeriod display refresh period; must agree with the measured frame-rate mode.
 */
BREVOLD_EXPORT void brevoldBufferMonitor(int lastMaxQueuedFrames, std::string peerLayerName,
                                         std::string layerName, int64_t diffSFToQB, int64_t diffQB,
                                         int64_t sfTime, int64_t reserved, int64_t refreshPeriod);

/**
 * Follows the display refresh rate: when the period falls into another of the 60, 90 and 120 Hz
 * bands, releases the held hint and sends a new one. Takes no lock; one caller thread at a time;
 * may block in the service (hint 4244).
 *
 * @param info a LayerFrameInfo, of which refreshPeriod is read; null does nothing.
 */
BREVOLD_EXPORT void checkRefreshRateChange(void* info);

}  // namespace android
