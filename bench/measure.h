#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/**
 * Measures calls against their floors, alternately, so a slow phase of the machine hits both.
 * Catch2, the benchmark library that links with libc++, measures one subject after the other,
 * prints means, and has no untimed step between two calls, in which a worker could go back to
 * sleep.
 */
namespace brevold::bench {

struct Costs {
    /** Nanoseconds per call, of a single call or as the mean of a batch. */
    std::vector<double> ns;
    uint64_t calls = 0;
    uint64_t allocations = 0;
};

/** Makes some calls and adds their costs. */
using Round = std::function<void(Costs&)>;

/** A subject and its floor, measured alternately. */
struct Comparison {
    Costs subject;
    Costs floor;
};

Comparison compare(const Round& subject, const Round& floor);

struct Target {
    double ratio;
    uint64_t allocations;
    double quantile = 0.5;
};

void printCostHeader();

/**
 * Measures and prints one line of the table. A missed target is measured again after a pause, at
 * most twice, because a slow phase of the machine passes. The line shows the last measurement.
 *
 * @return true if the target is met.
 */
bool printCost(const char* entry, const Round& subject, const Round& floor, Target target);

double quantileOf(std::vector<double> values, double quantile);
double medianOf(const std::vector<double>& values);

/** Returns the number of allocations by operator new on this thread so far. */
uint64_t allocations();

int64_t nowNs();

/** Adds one value, the mean of this many calls in a row. */
template <typename Call>
Round batch(int calls, Call call) {
    return [calls, call](Costs& costs) {
        const uint64_t allocationsBefore = allocations();
        const int64_t startNs = nowNs();
        for (int i = 0; i < calls; ++i)
            call();
        const int64_t endNs = nowNs();
        costs.allocations += allocations() - allocationsBefore;
        costs.calls += static_cast<uint64_t>(calls);
        costs.ns.push_back(static_cast<double>(endNs - startNs) / calls);
    };
}

}  // namespace brevold::bench
