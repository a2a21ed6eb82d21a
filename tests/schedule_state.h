#pragma once

#include <pthread.h>

#include <boost/context/detail/fcontext.hpp>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "tests/schedule_rules.h"

namespace brevold::test {

// The fibers: the workers by their index, then the compositor threads.
constexpr size_t kFibers = kWorkers + 2, kNoFiber = kFibers;

// The locks: each worker's by its index, then gLock.
constexpr size_t kGLock = kWorkers, kLocks = kWorkers + 1;

// A fiber pauses before a call, a lock, a wake-up, a query and its end, and after an unlock; then
// any fiber may continue. Nothing else needs a pause: this fiber holds the lock that any other
// fiber needs to notice it.
enum class Operation : uint8_t { Call, Lock, Unlock, WakeUp, Query, End };

struct Fiber {
    boost::context::detail::fcontext_t context;
    const Call* call;
    Operation next;
    size_t lock;  // for Lock and WakeUp
    bool isSignalled;
};

// The state of this program. Snapshots copy its bytes.
struct World {
    Fiber fibers[kFibers];
    size_t owners[kLocks];  // a fiber or kNoFiber
    Rules rules;
    int64_t timeNs;
    uint32_t kinds;  // of the calls so far, a bit each
    const char* violation;

    bool isAsleep(size_t worker) const {
        return fibers[worker].next == Operation::WakeUp && !fibers[worker].isSignalled;
    }
    bool canContinue(size_t fiber) const {
        const Fiber& self = fibers[fiber];
        const bool takesLock = self.next == Operation::Lock || self.next == Operation::WakeUp;
        return self.next != Operation::End && !isAsleep(fiber) &&
               !(takesLock && owners[self.lock] != kNoFiber);
    }
};
inline World gWorld;

constexpr size_t kStackBytes = 256 * 1024;
alignas(64) inline char gStacks[kFibers][kStackBytes];

// The library's variables and workers.
struct Memory {
    char* start;
    size_t bytes;
};
inline std::vector<Memory> gLibraryMemory;

// A copy of the state between two operations. Heap blocks are missing; pause() checks that the
// library keeps none.
class Snapshot {
  public:
    Snapshot() {
        mBytes.reserve(16384);
        visit([this](char* start, size_t bytes) { mBytes.append(start, bytes); });
    }
    void restore() const {
        const char* from = mBytes.data();
        visit([&from](char* start, size_t bytes) {
            memcpy(start, from, bytes);
            from += bytes;
        });
    }
    // Of the present state, without a copy.
    static size_t hash() {
        size_t hash = 0;
        visit([&hash](const char* start, size_t bytes) {
            hash = hash * 31 + std::hash<std::string_view>()({start, bytes});
        });
        return hash;
    }

  private:
    // The world comes first because it contains the extents of the stacks.
    template <typename Visitor>
    static void visit(Visitor visitor) {
        visitor(reinterpret_cast<char*>(&gWorld), sizeof(gWorld));
        for (const Memory& memory : gLibraryMemory)
            visitor(memory.start, memory.bytes);
        for (size_t fiber = 0; fiber < kFibers; ++fiber) {
            auto* const start = static_cast<char*>(gWorld.fibers[fiber].context);
            if (start == nullptr) continue;
            visitor(start, static_cast<size_t>(gStacks[fiber] + kStackBytes - start));
        }
    }

    std::string mBytes;
};

// The current fiber, or kNoFiber.
inline size_t gCurrent = kNoFiber;

inline const pthread_mutex_t* gLocks[kLocks];
inline const pthread_mutex_t* gLastLock;

inline int32_t gLoggedMode;

// The hints and measuring windows of all schedules.
inline size_t gBoosts, gReleases, gRequests, gWindows;

// Creates a fiber and runs it up to its first pause.
void start(size_t fiber, void (*body)(void* argument), void* argument);

// Continues a fiber up to its next pause.
void resume(size_t fiber, void* data = nullptr);

// Pauses the current fiber.
void pause(Operation next, size_t lock = kGLock);

}  // namespace brevold::test
