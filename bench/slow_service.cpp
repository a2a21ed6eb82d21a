#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

#include "bench/device.h"
#include "bench/measure.h"
#include "bench/tables.h"

namespace brevold::bench {

namespace {

constexpr int kCallMs = 50;
constexpr int kTries = 3;
constexpr double kNsPerMs = 1e6;

enum class Sending { None, Sf, SfWithScalingWaiting, Qb };

struct BlockingCase {
    const char* entry;
    Sending sending;
    /** Number of service calls that the entry point may wait for. */
    int allowedCalls;
    std::function<void()> call;
    bool losesMode = false;
};

const char* textOf(Sending sending) {
    switch (sending) {
        case Sending::None:
            return "no hint";
        case Sending::Sf:
            return "SF sends";
        case Sending::SfWithScalingWaiting:
            return "SF, brevoldScaling waits";
        case Sending::Qb:
            return "QB sends";
    }
    return "";
}

void waitUntilIdle() {
    const SleepWatch sf(workerOf(Channel::Sf));
    const SleepWatch qb(workerOf(Channel::Qb));
    spinUntil([&] { return sf.isAsleep() && qb.isAsleep() && !isHintInProgress(); });
}

/** Returns when the worker has started to send. */
void startHint(Channel channel) {
    waitUntilIdle();
    android::releaseScaling();
    waitUntilIdle();
    const int before = hintsStarted();
    android::energyScaling(1.5f, android::kDirectionUp, android::kBoost, static_cast<int>(channel));
    spinUntil([before] { return hintsStarted() != before; });
}

double blockedMs(const BlockingCase& test) {
    std::thread scaling;
    if (test.sending == Sending::None) waitUntilIdle();
    if (test.sending == Sending::Qb) startHint(Channel::Qb);
    if (test.sending == Sending::Sf) startHint(Channel::Sf);
    if (test.sending == Sending::SfWithScalingWaiting) {
        startHint(Channel::Sf);
        std::atomic<pid_t> waiter = 0;
        scaling = std::thread([&waiter] {
            waiter = gettid();
            brevoldScaling(2, 0);
        });
        spinUntil([&] { return waiter != 0; });
        const SleepWatch watch(waiter);
        spinUntil([&] { return watch.isAsleep(); });
    }
    const int64_t startNs = nowNs();
    test.call();
    const double ms = static_cast<double>(nowNs() - startNs) / kNsPerMs;
    if (scaling.joinable()) scaling.join();
    if (test.losesMode) measureRate(kPeriod60Ns);
    return ms;
}

std::vector<BlockingCase> blockingCases() {
    const auto check = [] { brevoldCheck("sf"); };
    const auto monitor = [] { brevoldMonitor(1, kPeriod60Ns); };
    const auto notDue = [] { brevoldScaling(1, 0); };
    const auto boost = [] { brevoldScaling(2, 0); };
    const auto reportOf = [](int queuedFrames) {
        return [queuedFrames] {
            LayerFrameInfo info = frameOf(kLayer);
            info.lastMaxQueuedFrames = queuedFrames;
            brevoldOnFrameAvailable(&info);
        };
    };
    const auto otherRate = [] {
        static int64_t periodNs = kPeriod60Ns;
        periodNs = periodNs == kPeriod60Ns ? kPeriod90Ns : kPeriod60Ns;
        LayerFrameInfo info = frameOf(kLayer);
        info.refreshPeriod = periodNs;
        brevoldOnFrameAvailable(&info);
    };
    const auto otherLayer = [] {
        static int number = 0;
        LayerFrameInfo info = frameOf("com.example.other/Main#" + std::to_string(++number));
        brevoldOnFrameAvailable(&info);
    };
    return {
            {"brevoldCheck", Sending::Sf, 0, check},
            {"brevoldMonitor", Sending::Sf, 0, monitor},
            {"brevoldMonitor", Sending::SfWithScalingWaiting, 1, monitor},
            {"brevoldMonitor", Sending::Qb, 0, monitor},
            {"brevoldScaling, not due", Sending::Sf, 0, notDue},
            {"brevoldScaling, posting", Sending::Sf, 1, boost},
            {"brevoldScaling, posting", Sending::Qb, 0, boost},
            {"frame report, no request", Sending::Sf, 0, reportOf(0)},
            {"frame report, no request", Sending::SfWithScalingWaiting, 1, reportOf(0)},
            {"frame report, no request", Sending::Qb, 0, reportOf(0)},
            {"frame report, DOWN", Sending::Sf, 0, reportOf(2)},
            {"frame report, DOWN", Sending::Qb, 1, reportOf(2)},
            {"frame report, new refresh rate", Sending::None, 2, otherRate},
            {"releaseScaling", Sending::Sf, 1, android::releaseScaling},
            {"brevoldRefresh", Sending::Sf, 1, brevoldRefresh, true},
            {"brevoldRefresh", Sending::Qb, 0, brevoldRefresh, true},
            {"frame report, new layer name", Sending::None, 1, otherLayer, true},
    };
}

}  // namespace

bool printSlowService() {
    constexpr double kSlackMs = 5;
    printf("\nEach call of the service takes %d ms; how long an entry point blocks meanwhile\n",
           kCallMs);
    printf("%-32s %-26s %8s %8s\n", "entry", "meanwhile", "ms", "max");
    bool isMet = true;
    measureRate(kPeriod60Ns);
    setServiceDelayMs(kCallMs);
    for (const BlockingCase& test : blockingCases()) {
        std::vector<double> ms;
        for (int i = 0; i < kTries; ++i)
            ms.push_back(blockedMs(test));
        const int allowedMs = kCallMs * test.allowedCalls;
        const bool isAllowed = medianOf(ms) <= allowedMs + kSlackMs;
        isMet &= isAllowed;
        printf("%-32s %-26s %8.2f %8d%s\n", test.entry, textOf(test.sending), medianOf(ms),
               allowedMs, isAllowed ? "" : "  MISSED");
    }
    waitUntilIdle();
    setServiceDelayMs(0);
    return isMet;
}

}  // namespace brevold::bench
