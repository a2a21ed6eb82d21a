#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/**
 * Costs of calls and their floors. Not a benchmark library's: Catch2's, the one that links with
 * libc++, measures one subject after the other, so that a slow spell of the machine hits one of
 * them alone, has no untimed step between two calls, which a post needs until its worker sleeps
 * again, and prints means.
 */
namespace brevold::bench {

struct Costs {
    /** Nanoseconds a call: of one call, or the mean of a batch. */
    std::vector<double> ns;
    uint64_t calls = 0;
    uint64_t allocations = 0;
};

/** Adds what some calls cost. */
using Round = std::function<void(Costs&)>;

/** A subject and its floor, measured in turns. */
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
 * Measures one line of the table and prints it. What is above the target is measured again, twice
 * at most and seconds later: a slow spell of the machine passes, a target that is missed stays so.
 * The line shows the last measurement.
 *
 * @return whether the target is met.
 */
bool printCost(const char* entry, const Round& subject, const Round& floor, Target target);

double quantileOf(std::vector<double> values, double quantile);
double medianOf(const std::vector<double>& values);

/** Allocations by operator new on this thread so far. */
uint64_t allocations();

int64_t nowNs();

/** One value, the mean of that many calls in a row. */
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
