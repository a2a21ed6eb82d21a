#pragma once

#include <utils/Mutex.h>
#include <utils/StrongPointer.h>

#include <cstdint>
#include <string>
#include <vector>

#include "brevold/frame_rate.h"
#include "brevold/perf_client.h"
#include "brevold/scaling_sync_thread.h"

// The process-wide state. Variables without GUARDED_BY are shared without a lock on purpose, and
// none is atomic: a late value costs one frame's decision, but a lock would make compositor threads
// wait for each other. The compositor does not run brevoldInit or clearConfigs concurrently with
// other entry points. Lock order: gLock, then a worker's own lock.
//
// Functions named ...WithoutLock access a variable outside its lock on purpose. The race detector's
// suppressions (tests/tsan.supp) name them, and any other unlocked access is a bug.

namespace android {

extern Mutex gLock;
extern Mutex gInitLock;

// Switches. Written by brevoldInit under gInitLock, read without a lock.
extern bool gScalingEnabled;
extern bool gJr10Enabled;
extern bool gSmoothMotion;
extern bool gPfarDownEnabled;
extern bool gDebug;
extern int32_t gFpsSwitchEnabled;
extern bool gInitDone GUARDED_BY(gInitLock);

// Functions of the performance service, null if they could not be bound. Written by brevoldInit
// under gInitLock, read without a lock.
extern PerfGetFeedbackFn gPerfGetFeedback;
extern PerfGetPropFn gPerfGetProp;
extern PerfHintFn gPerfHintUpdate;
extern PerfLockRelFn gPerfLockRel;

// The workers exist whenever gScalingEnabled is set.
extern sp<ScalingSyncThread> gSFThread;
extern sp<ScalingSyncThread> gQBThread;

/** isDebugLayer() without a copy of the name. */
bool isListedLayer(const std::string& name);

/** Written by brevoldInit under gInitLock, read without a lock. */
extern std::vector<std::string> gDebugLayers;

/** Written under gLock. The application check reads it without, only to notice a change. */
extern std::string gCurrentLayer;
extern int32_t gCurrentLayerKeyA GUARDED_BY(gLock);
extern int32_t gCurrentLayerKeyB GUARDED_BY(gLock);
extern bool gLayerUnchanged GUARDED_BY(gLock);

/** Written by the application check without a lock, read under gLock. */
extern int32_t gAppType;
extern bool gTargetApp GUARDED_BY(gLock);
/** Frame-rate mode. */
extern int32_t gMode GUARDED_BY(gLock);

inline bool isTargetAppWithoutLock() NO_THREAD_SAFETY_ANALYSIS {
    return gTargetApp;
}

inline int32_t modeWithoutLock() NO_THREAD_SAFETY_ANALYSIS {
    return gMode;
}

// The frame-rate window. Only the thread of the refresh ticks uses it. Times in nanoseconds.
extern bool gFpsWindowActive;
extern int64_t gWindowStart;
extern int32_t gFrameCount;
extern float gIntervalSum;
extern float gFps;

// Requests posted in the window. Refresh ticks read and reset them without a lock, so a request
// that is counted at the same time may be lost. DOWN and UP are counted by frame reports without a
// lock, jank boosts (gIdleCount) by brevoldScaling under gLock.
extern int32_t gDownCount;
extern int32_t gUpCount;
extern int32_t gIdleCount;

/** Stamp of the previous frame, in nanoseconds; only frame reports use it. */
extern int64_t gLastFrameStamp;
/** Written by refresh ticks without a lock, read by brevoldMonitor under gLock. Nanoseconds. */
extern int64_t gLastRefreshTime;
/** Written by frame reports without a lock, read by brevoldScaling under gLock. Nanoseconds. */
extern int64_t gVsyncPeriod;
extern bool gPrevQueueBusy GUARDED_BY(gLock);

inline void setLastRefreshTimeWithoutLock(int64_t timeNs) {
    gLastRefreshTime = timeNs;
}

inline void setVsyncPeriodWithoutLock(int64_t periodNs) {
    gVsyncPeriod = periodNs;
}

// The refresh-rate hint in force. Only frame reports use it.
extern int32_t gRefreshRate;
extern int32_t gRefreshRateHandle;

}  // namespace android
