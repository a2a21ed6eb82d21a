#include <sched.h>

#include <utility>

#include "bench/device.h"
#include "bench/floors.h"
#include "bench/measure.h"
#include "bench/tables.h"

namespace brevold::bench {

namespace {

constexpr int kShortCalls = 20000;
constexpr int kExpressionCalls = 200;
constexpr int kPosts = 300;
constexpr Target kEntryTarget = {1.15, 0};
// A report copies two names from the record, and two entry points take one by value.
constexpr Target kReportTarget = {1.05, 4};
constexpr Target kHandOverTarget = {1.3, 0};
constexpr Target kLateHandOverTarget = {1.3, 0, 0.99};

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
Round posts(Posting posting, Until until) {
    return [posting = std::move(posting), until](Costs& costs) {
        const SleepWatch watch(posting.worker);
        spinUntil([&] { return watch.isAsleep(); });
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
            costs.allocations += allocations() - allocationsBefore;
            ++costs.calls;
            const int64_t endNs = until == Until::Sent ? posting.handledNs() : returnNs;
            costs.ns.push_back(static_cast<double>(endNs - startNs));
            if (posting.undo != nullptr) postAndWait(posting.undo, posting, watch);
        }
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

}  // namespace

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
                       batch(kShortCalls, [] { scalingFloor(1, 0); }), kEntryTarget);

    Posting boost = libraryPosting(Channel::Sf, [] { brevoldScaling(2, 0); });
    boost.undo = android::releaseScaling;
    Posting boostFloor = floorPosting([] { scalingPostFloor(2, 0); });
    boostFloor.undo = handOverFloor;
    isMet &= printCost("brevoldScaling, posting", posts(boost, Until::Return),
                       posts(boostFloor, Until::Return), kEntryTarget);

    isMet &= printBufferMonitor("brevoldBufferMonitor, DOWN", 2);
    isMet &= printBufferMonitor("brevoldBufferMonitor, UP", 1);

    LayerFrameInfo info = frameOf(kLayer);
    isMet &= printCost("brevoldOnFrameAvailable, layer unchanged",
                       batch(kExpressionCalls, [&] { brevoldOnFrameAvailable(&info); }),
                       batch(kExpressionCalls, [&] { packageFloor(info.layerName); }),
                       kReportTarget);

    const auto request =
            posts(libraryPosting(Channel::Qb,
                                 [] {
                                     android::energyScaling(0.5f, android::kDirectionDown,
                                                            android::kNoBoost, android::kQbChannel);
                                 }),
                  Until::Sent);
    const auto handOver = posts(floorPosting(handOverFloor), Until::Sent);
    isMet &= printCost("request posted to hint sent", request, handOver, kHandOverTarget);
    isMet &= printCost("  its 99th percentile", request, handOver, kLateHandOverTarget);
    return isMet;
}

}  // namespace brevold::bench
