#pragma once

#include <cstdint>
#include <string>

/**
 * What each entry cannot do without: the locks, clock reads, wake-ups and the expression, with the
 * entry's own arguments, and nothing else.
 */
namespace brevold::bench {

#define BREVOLD_FLOOR __attribute__((visibility("default")))

BREVOLD_FLOOR void refreshFloor();
BREVOLD_FLOOR int monitorFloor(int queuedFrames, int64_t periodNs);
BREVOLD_FLOOR int scalingFloor(int queuedFrames, int suppress);
BREVOLD_FLOOR std::string packageFloor(const std::string& layerName);

/** A thread that takes a wake-up and no more, run as the library's workers are. */
BREVOLD_FLOOR void startFloorWorker();
BREVOLD_FLOOR int scalingPostFloor(int queuedFrames, int suppress);
BREVOLD_FLOOR void bufferMonitorFloor(int lastMaxQueuedFrames, std::string peerLayerName,
                                      std::string layerName, int64_t diffSFToQB, int64_t diffQB,
                                      int64_t sfTime, int64_t reserved, int64_t refreshPeriod);
BREVOLD_FLOOR void handOverFloor();

/** Wake-ups that the floor's worker took; when it took the last; its thread. */
BREVOLD_FLOOR int floorWakeUps();
BREVOLD_FLOOR int64_t floorWakeUpNs();
BREVOLD_FLOOR int floorThread();

}  // namespace brevold::bench
