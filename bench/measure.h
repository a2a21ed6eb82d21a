#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/**
 * Measures subjects against floors, alternately, so a slow phase of the machine hits both. Only
 * ratios have targets. Catch2, the benchmark library that links with libc++, measures one subject
 * after the other and has no untimed step between two calls, in which a worker could go back to
 * sleep.
 */
namespace brevold::bench {

/** One round of calls. */
struct Costs {
    /** Nanoseconds of a call: the mean of a batch, or a percentile of calls timed one by one. */
    double ns = 0;
    /** Allocations of a call. */
    double allocations = 0;
};

using Round = std::function<Costs()>;

/** The median of some values, and bounds that contain the true median in 99 of 100 runs. */
struct Spread {
    double median;
    double low;
    double high;
};
Spread spreadOf(std::vector<double> values);

struct Target {
    double ratio;
    double allocations = 0;
};

void printCostHeader();

/**
 * Measures and prints one line of the table. A target is missed only if the lower bound of the
 * ratio, or the number of allocations, is above it.
 *
 * @return true if the target is met.
 */
bool printCost(const char* entry, const Round& subject, const Round& floor, Target target,
               int rounds = 60);

double quantileOf(std::vector<double> values, double quantile);

/** Returns the number of allocations by operator new on this thread so far. */
uint64_t allocations();

int64_t nowNs();

/** Returns this thread's processor time. It does not advance while other programs run. */
int64_t processorNs();

/** Makes this many calls in a row and takes their processor time. */
template <typename Call>
Round batch(int calls, Call call) {
    return [calls, call] {
        const uint64_t allocationsBefore = allocations();
        const int64_t startNs = processorNs();
        for (int i = 0; i < calls; ++i)
            call();
        const int64_t endNs = processorNs();
        return Costs{static_cast<double>(endNs - startNs) / calls,
                     static_cast<double>(allocations() - allocationsBefore) / calls};
    };
}

}  // namespace brevold::bench
