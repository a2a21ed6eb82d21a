#include <cstdio>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "bench/device.h"
#include "bench/floors.h"
#include "bench/measure.h"

namespace brevold::bench {

namespace {

constexpr int kShortCalls = 20000;
constexpr int kExpressionCalls = 200;
constexpr int kPosts = 100;
constexpr size_t kLongName = 65536;
constexpr Target kEntryTarget = {1.15};
// The time of a call of 6 to 12 ns depends on where a process has its code and data: the same
// program has a ratio of 1.0 in some runs and of 1.3 in others.
constexpr Target kShortestEntryTarget = {1.5};
// A report copies two names from the record, and two entry points take one by value.
constexpr Target kReportTarget = {1.05, 4};
constexpr Target kHostileNameTarget = {3.0, 20};
constexpr Target kHandOverTarget = {1.3};

/** A post and the worker that handles it. */
struct Posting {
    std::function<void()> post;
    std::function<int()> handledCount;
    std::function<int64_t()> handledNs;
    pid_t worker;
    /** Lets the worker send the next post too; wakes the worker. */
    std::function<void()> undo = nullptr;
};

void postAndWait(const std::function<void()>& post, const Posting& posting,
                 const SleepWatch& watch) {
    const int before = posting.handledCount();
    post();
    spinUntil([&] { return posting.handledCount() != before && watch.isAsleep(); });
}

enum class Until { Return, Sent };

/** Posts one by one, each to a waiting worker. */
Round posts(Posting posting, Until until, double quantile = 0.5) {
    return [posting = std::move(posting), until, quantile] {
        const SleepWatch watch(posting.worker);
        spinUntil([&] { return watch.isAsleep(); });
        std::vector<double> ns;
        uint64_t allocated = 0;
        for (int i = 0; i < kPosts; ++i) {
            int64_t returnNs = 0;
            int64_t startNs = 0;
            const uint64_t allocationsBefore = allocations();
            postAndWait(
                    [&] {
                        startNs = nowNs();
                        posting.post();
                        returnNs = nowNs();
                    },
                    posting, watch);
            allocated += allocations() - allocationsBefore;
            const int64_t endNs = until == Until::Sent ? posting.handledNs() : returnNs;
            ns.push_back(static_cast<double>(endNs - startNs));
            if (posting.undo != nullptr) postAndWait(posting.undo, posting, watch);
        }
        return Costs{quantileOf(ns, quantile), static_cast<double>(allocated) / kPosts};
    };
}

Posting libraryPosting(Channel channel, std::function<void()> post) {
    return {std::move(post), hintsStarted, hintStartNs, workerOf(channel)};
}

Posting floorPosting(std::function<void()> post) {
    return {std::move(post), floorWakeUps, floorWakeUpNs, floorThread()};
}

/** The buffer monitor or its floor. Each call makes the caller's copies of the names. */
template <typename Monitor>
std::function<void()> monitored(Monitor monitor, int queuedFrames) {
    return [monitor, queuedFrames] {
        constexpr int64_t kSlowFrameNs = 40000000;
        monitor(queuedFrames, kLayer, kLayer, 2000000, kSlowFrameNs, 1000000000, 0, kPeriod60Ns);
    };
}

bool printBufferMonitor(const char* entry, int queuedFrames) {
    const auto subject = monitored(android::brevoldBufferMonitor, queuedFrames);
    const auto floor = monitored(bufferMonitorFloor, queuedFrames);
    return printCost(entry, posts(libraryPosting(Channel::Qb, subject), Until::Return),
                     posts(floorPosting(floor), Until::Return), kEntryTarget);
}

std::string filled(const std::string& begin, char fill, const std::string& end) {
    return begin + std::string(kLongName - begin.size() - end.size(), fill) + end;
}

Round reports(const std::string& name, int calls) {
    return [name, calls] {
        LayerFrameInfo info = frameOf(name);
        return batch(calls, [&] { brevoldOnFrameAvailable(&info); })();
    };
}

Round packages(const std::string& name) {
    return batch(kExpressionCalls, [name] { android::getPackageName(name); });
}

/** Names that an application could choose to stall the compositor, compared with an ordinary one.
 */
bool printHostileNames() {
    const std::pair<const char*, std::string> names[] = {
            {"hostile name: separators, no end", filled("SurfaceView", '-', "")},
            {"hostile name: blanks, then a slash", filled("SurfaceView", ' ', "/#0")},
            {"hostile name: separators, a package", filled("SurfaceView", '-', "a#0")},
            {"hostile name: letters, no end", filled("", 'a', "")},
            {"hostile name: digits", filled("a#", '0', "")},
            {"hostile name: signs", filled("", '#', "0")},
            {"hostile name: slashes", filled("a", '/', "#0")},
            {"hostile name: line end after slash", filled("a/", 'b', "\n#0")},
    };
    const std::string ordinary = filled("com.example.game/", 'a', "#0");
    bool isMet = true;
    for (const auto& [entry, name] : names)
        isMet &= printCost(entry, packages(name), packages(ordinary), kHostileNameTarget, 20);
    return isMet;
}

bool printCosts() {
    printCostHeader();
    bool isMet = printCost("brevoldRefresh, window open", batch(kShortCalls, brevoldRefresh),
                           batch(kShortCalls, refreshFloor), kEntryTarget);

    // In mode 0 every condition of the verdict is tested.
    measureRate(40000000);
    isMet &= printCost("brevoldMonitor", batch(kShortCalls, [] { brevoldMonitor(1, kPeriod60Ns); }),
                       batch(kShortCalls, [] { monitorFloor(1, kPeriod60Ns); }), kEntryTarget);

    measureRate(kPeriod60Ns);
    isMet &= printCost("brevoldScaling, not due", batch(kShortCalls, [] { brevoldScaling(1, 0); }),
                       batch(kShortCalls, [] { scalingFloor(1, 0); }), kShortestEntryTarget);

    Posting boost = libraryPosting(Channel::Sf, [] { brevoldScaling(2, 0); });
    boost.undo = android::releaseScaling;
    Posting boostFloor = floorPosting([] { scalingPostFloor(2, 0); });
    boostFloor.undo = handOverFloor;
    isMet &= printCost("brevoldScaling, posting", posts(boost, Until::Return),
                       posts(boostFloor, Until::Return), kEntryTarget);

    isMet &= printBufferMonitor("brevoldBufferMonitor, DOWN", 2);
    isMet &= printBufferMonitor("brevoldBufferMonitor, UP", 1);

    const Posting request = libraryPosting(Channel::Qb, [] {
        android::energyScaling(0.5f, android::kDirectionDown, android::kNoBoost,
                               android::kQbChannel);
    });
    const Posting handOver = floorPosting(handOverFloor);
    isMet &= printCost("request posted to hint sent", posts(request, Until::Sent),
                       posts(handOver, Until::Sent), kHandOverTarget);
    isMet &= printCost("  its 99th percentile", posts(request, Until::Sent, 0.99),
                       posts(handOver, Until::Sent, 0.99), kHandOverTarget);

    isMet &= printCost("frame report, layer unchanged", reports(kLayer, kExpressionCalls),
                       batch(kExpressionCalls, [] { packageFloor(kLayer); }), kReportTarget);
    addDebugLayerSetting("x x x x x x x x x x x x x x x x x x x x x x x x x x x x x x x x x x x x");
    isMet &= printCost("frame report, 36 debug layers", reports(kLayer, kExpressionCalls),
                       batch(kExpressionCalls, [] { packageFloor(kLayer); }), kReportTarget);
    return printHostileNames() && isMet;
}

}  // namespace
}  // namespace brevold::bench

int main() {
    try {
        brevold::bench::startDevice();
        return brevold::bench::printCosts() ? 0 : 1;
    } catch (const std::exception& error) {
        fprintf(stderr, "brevold-bench: %s\n", error.what());
        return 2;
    }
}
