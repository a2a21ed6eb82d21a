// Explores every order in which two compositor threads and the library's workers can lock, unlock,
// wait, signal and call the service. All four are fibers of one thread, and this program supplies
// the platform to the library. Preemptions are not limited: if several schedules reach the same
// state, the exploration continues from it only once.

#include <link.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <unordered_map>

#include "brevold/brevold.h"
#include "brevold/frame_rate.h"
#include "tests/schedule_state.h"

using namespace brevold::test;

namespace {

constexpr int64_t kPeriodNs = 16666666, kSecondNs = 1000000000;
// Short enough for a string without a heap block.
constexpr char kLayer[] = "a.b/c#1", kOtherLayer[] = "d.e/f#1";

void tick(int64_t timeNs = gWorld.timeNs + kPeriodNs) {
    gWorld.timeNs = timeNs;
    brevoldRefresh();
}

// A frame with a headroom of 8 ms: a DOWN with two queued frames, an UP with one. A tracked frame
// takes most of the time, because the library looks for its package.
void frame(int32_t queuedFrames, int64_t intervalMs, const char* layer, bool isTracked) {
    LayerFrameInfo info = {};
    info.skipLayerCheck = isTracked ? 0 : 1;
    info.layerName = info.peerLayerName = layer;
    info.lastMaxQueuedFrames = queuedFrames;
    info.refreshPeriod = kPeriodNs;
    info.sfTime = 1;
    info.qbTime = info.sfTime + 2 * (kPeriodNs - 1000000) - 8000000;
    info.lastQbTime = info.qbTime - intervalMs * 1000000;
    brevoldOnFrameAvailable(&info);
}

constexpr uint32_t wordOf(float scale, bool isQb) {
    const bool isDown = scale < 1.0f;
    return android::packTypeWord(scale, isDown ? android::kDirectionDown : android::kDirectionUp,
                                 isDown ? android::kNoBoost : android::kBoost) |
           (isQb ? android::kQbChannelBit : 0);
}

// Only the first thread reports frames, and only the second one ticks.
constexpr uint32_t kFirst = 1, kSecond = 2, kBoth = kFirst | kSecond;
const Call kCalls[] = {
        {"a tick", kSecond, [] { tick(); }},
        // At a full second: fewer states then differ by their time alone.
        {"an idle tick", kSecond, [] { tick((gWorld.timeNs / kSecondNs + 2) * kSecondNs); }},
        {"a release", kBoth, android::releaseScaling},
        {"a vsync", kFirst, [] { brevoldMonitor(2, kPeriodNs); }},
        {"a boost", kBoth, [] { brevoldScaling(2, 0); }, kSf, wordOf(10.0f, false)},
        {"a DOWN frame", kFirst, [] { frame(2, 2, kLayer, false); }, kQb, wordOf(0.25f, true)},
        {"an UP frame", kFirst, [] { frame(1, 10, kLayer, false); }, kQb, wordOf(1.25f, true)},
        {"a frame of another layer", kFirst, [] { frame(2, 4, kOtherLayer, true); }, kQb,
         wordOf(0.5f, true)},
        {"a request", kBoth, [] { android::energyScaling(0.125f, 1, 0, kQb); }, kQb,
         wordOf(0.125f, true)},
};

// All programs of up to this many calls a thread, with up to this many kinds of call in both
// threads together.
struct Programs {
    int calls;
    int kinds;
};
constexpr Programs kPrograms[] = {{2, 4}, {3, 4}, {4, 3}};

void makeCalls(void* calls) {
    Fiber& self = gWorld.fibers[gCurrent];
    for (int left = *static_cast<const int*>(calls); left > 0; --left) {
        pause(Operation::Call);
        self.call->run();
        self.call = nullptr;
    }
}

class Explorer {
  public:
    explicit Explorer(const Programs& programs) : mPrograms(programs) {}

    // Returns the number of schedules that start in the present state. A loop, because a fiber's
    // stack may keep the stack pointer of its caller, and equal states would then differ.
    double explore() {
        mPath.push_back(present());
        while (true) {
            Node& node = mPath.back();
            if (!node.steps.empty()) {
                node.step = node.steps.back();
                node.steps.pop_back();
                node.state.restore();
                take(node.step);
                const auto known = mSchedules.find(Snapshot::hash());
                if (known == mSchedules.end()) {
                    mPath.push_back(present());
                } else {
                    node.schedules += known->second;
                }
                continue;
            }
            const double schedules = node.schedules;
            mSchedules.emplace(node.hash, schedules);
            mPath.pop_back();
            if (mPath.empty()) return schedules;
            mPath.back().schedules += schedules;
        }
    }

    size_t states() const { return mSchedules.size(); }

  private:
    struct Step {
        size_t fiber;
        Operation operation;
        const Call* call;
    };

    struct Node {
        Snapshot state;
        size_t hash = Snapshot::hash();
        std::vector<Step> steps;  // not taken yet
        Step step;                // taken last
        double schedules;
    };

    // The schedule ends in a state without steps.
    Node present() const {
        Node node = {};
        for (size_t fiber = 0; fiber < kFibers; ++fiber) {
            const auto& [context, call, next, lock, isSignalled] = gWorld.fibers[fiber];
            if (!gWorld.canContinue(fiber)) continue;
            if (next != Operation::Call) {
                node.steps.push_back({fiber, next, call});
                continue;
            }
            for (const Call& choice : kCalls) {
                const bool isAllowed = (choice.callers >> (fiber - kWorkers) & 1) != 0;
                if (isAllowed && __builtin_popcount(kindsWith(choice)) <= mPrograms.kinds) {
                    node.steps.push_back({fiber, next, &choice});
                }
            }
        }
        if (!node.steps.empty()) return node;
        for (size_t fiber = 0; fiber < kFibers; ++fiber) {
            const Operation next = gWorld.fibers[fiber].next;
            const bool isIdle = next == Operation::Call || next == Operation::End;
            if (!(fiber < kWorkers ? gWorld.isAsleep(fiber) : isIdle)) fail("a deadlock");
        }
        node.schedules = 1.0;
        return node;
    }

    static uint32_t kindsWith(const Call& call) { return gWorld.kinds | 1u << (&call - kCalls); }

    void take(const Step& step) const {
        if (step.operation == Operation::Call) gWorld.kinds = kindsWith(*step.call);
        gWorld.fibers[step.fiber].call = step.call;
        resume(step.fiber);
        if (gWorld.violation != nullptr) fail(gWorld.violation);
    }

    [[noreturn]] void fail(const char* violation) const {
        constexpr const char* kFiberNames[] = {"SF", "QB", "thread 1", "thread 2"};
        constexpr const char* kNames[] = {"call", "lock", "unlock", "wake", "query", "end"};
        for (const Node& node : mPath) {
            const auto& [fiber, operation, call] = node.step;
            printf("%s: %s%s%s\n", kFiberNames[fiber], kNames[static_cast<size_t>(operation)],
                   call == nullptr ? "" : " in ", call == nullptr ? "" : call->name);
        }
        throw std::runtime_error(violation);
    }

    const Programs& mPrograms;
    std::unordered_map<size_t, double> mSchedules;  // by the hash of a state
    std::vector<Node> mPath;
};

// Adds the library's data, except the part that is read-only after relocation.
int addVariables(dl_phdr_info* info, size_t, void*) {
    if (strstr(info->dlpi_name, "libbrevold.so") == nullptr) return 0;
    constexpr uintptr_t kPageBytes = 4096;
    uintptr_t start = 0, end = 0;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        const uintptr_t segmentEnd = info->dlpi_addr + segment.p_vaddr + segment.p_memsz;
        if (segment.p_type == PT_GNU_RELRO) start = segmentEnd / kPageBytes * kPageBytes;
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_W) != 0) end = segmentEnd;
    }
    gLibraryMemory.push_back({reinterpret_cast<char*>(start), end - start});
    return 1;
}

// Initialises the library and measures 60 fps. The second tick afterwards ends a window.
void setUp() {
    dl_iterate_phdr(addVariables, nullptr);
    std::fill_n(gWorld.owners, kLocks, kNoFiber);
    gWorld.timeNs = kPeriodNs;
    brevoldInit();
    for (size_t worker = 0; worker < kWorkers; ++worker) {
        while (gWorld.canContinue(worker))
            resume(worker);
    }
    brevoldMonitor(0, 0);
    gLocks[kGLock] = gLastLock;
    frame(1, 0, kLayer, true);
    while (gLoggedMode != android::kMode60Fps)
        tick();
    for (int i = 0; i < 60; ++i)
        tick();
    gWindows = 0;
}

}  // namespace

int main() {
    setUp();
    const Snapshot initial;
    try {
        for (const Programs& programs : kPrograms) {
            int calls = programs.calls;
            for (size_t fiber = kWorkers; fiber < kFibers; ++fiber)
                start(fiber, makeCalls, &calls);
            Explorer explorer(programs);
            const double schedules = explorer.explore();
            printf("%d calls a thread, %d kinds: %.2g schedules in %zu states\n", calls,
                   programs.kinds, schedules, explorer.states());
            initial.restore();
        }
    } catch (const std::exception& violation) {
        printf("%s\n", violation.what());
        return 1;
    }
    printf("%zu boosts, %zu releases, %zu requests, %zu measuring windows\n", gBoosts, gReleases,
           gRequests, gWindows);
    return gBoosts == 0 || gReleases == 0 || gRequests == 0 || gWindows == 0 ? 1 : 0;
}
