#pragma once

#include <utils/Mutex.h>
#include <utils/StrongPointer.h>

#include <cstdint>
#include <string>
#include <vector>

#include "brevold/frame_rate.h"
#include "brevold/perf_client.h"
#include "brevold/scaling_sync_thread.h"

// The process-wide state. What carries no guard is read and written without a lock on purpose:
// nothing is atomic, and the compositor does not run brevoldInit or clearConfigs concurrently with
// the other entries. Lock order: gLock, then a worker's own lock.

namespace android {

extern Mutex gLock;
extern Mutex gInitLock;

// Switches, read once at initialisation.
extern bool gScalingEnabled;
extern bool gJr10Enabled;
extern bool gSmoothMotion;
extern bool gPfarDownEnabled;
extern bool gDebug;
extern int32_t gFpsSwitchEnabled;
extern bool gInitDone GUARDED_BY(gInitLock);

// The performance service; null where it could not be bound.
extern PerfGetFeedbackFn gPerfGetFeedback;
extern PerfGetPropFn gPerfGetProp;
extern PerfHintFn gPerfHintUpdate;
extern PerfLockRelFn gPerfLockRel;

// Both exist whenever gScalingEnabled is set.
extern sp<ScalingSyncThread> gSFThread;
extern sp<ScalingSyncThread> gQBThread;

/** isDebugLayer() without a copy of the name. */
bool isListedLayer(const std::string& name);

// Layer and application. gCurrentLayer is written under gLock and read without it by the
// application check, which only wants to notice a change.
extern std::vector<std::string> gDebugLayers;
extern std::string gCurrentLayer;
extern int32_t gCurrentLayerKeyA GUARDED_BY(gLock);
extern int32_t gCurrentLayerKeyB GUARDED_BY(gLock);
extern bool gLayerUnchanged GUARDED_BY(gLock);
extern int32_t gAppType;
extern bool gTargetApp;

// Frame-rate mode, 0 to 5. Written under gLock; requests and the buffer monitor read it without.
extern int32_t gMode;

// The frame-rate window and the events counted in it. Times in nanoseconds.
extern bool gFpsWindowActive;
extern int64_t gWindowStart;
extern int32_t gFrameCount;
extern float gIntervalSum;
extern float gFps;
extern int32_t gDownCount;
extern int32_t gUpCount;
extern int32_t gIdleCount;

// What one report leaves for the next. Times in nanoseconds.
extern int64_t gLastFrameStamp;
extern int64_t gLastRefreshTime;
extern int64_t gVsyncPeriod;
extern bool gPrevQueueBusy GUARDED_BY(gLock);

// The refresh-rate hint that is held.
extern int32_t gRefreshRate;
extern int32_t gRefreshRateHandle;

}  // namespace android
