#pragma once

#include <cstdint>
#include <string>

/**
 * The minimum work of each entry point: its locks, clock reads, wake-ups and the expression, with
 * the same arguments and nothing else.
 */
namespace brevold::bench {

#define BREVOLD_FLOOR __attribute__((visibility("default")))

BREVOLD_FLOOR void refreshFloor();
BREVOLD_FLOOR int monitorFloor(int queuedFrames, int64_t periodNs);
BREVOLD_FLOOR int scalingFloor(int queuedFrames, int suppress);
BREVOLD_FLOOR std::string packageFloor(const std::string& layerName);

/** Starts a thread that only handles wake-ups, with the priority of the library's workers. */
BREVOLD_FLOOR void startFloorWorker();
BREVOLD_FLOOR int scalingPostFloor(int queuedFrames, int suppress);
BREVOLD_FLOOR void bufferMonitorFloor(int lastMaxQueuedFrames, std::string peerLayerName,
                                      std::string layerName, int64_t diffSFToQB, int64_t diffQB,
                                      int64_t sfTime, int64_t reserved, int64_t refreshPeriod);
BREVOLD_FLOOR void handOverFloor();

/** Number of wake-ups that the floor's worker handled. */
BREVOLD_FLOOR int floorWakeUps();
/** Time of the last wake-up. */
BREVOLD_FLOOR int64_t floorWakeUpNs();
/** Thread of the floor's worker, or 0 before it runs. */
BREVOLD_FLOOR int floorThread();

}  // namespace brevold::bench
