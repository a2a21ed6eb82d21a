#include "bench/measure.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <thread>

namespace {

thread_local uint64_t tAllocations;

}  // namespace

// The program's own are those of every library in the process.
void* operator new(size_t size) {
    ++tAllocations;
    void* const memory = malloc(size);
    if (memory == nullptr) abort();
    return memory;
}

void operator delete(void* memory) noexcept {
    free(memory);
}

void operator delete(void* memory, size_t /*size*/) noexcept {
    free(memory);
}

namespace brevold::bench {

namespace {

constexpr int kRounds = 60;
constexpr double kNoiseQuantile = 0.25;
constexpr int kMeasurements = 3;
constexpr auto kPause = std::chrono::seconds(2);

/** The quantile of each round, subject over floor. */
std::vector<double> roundRatios(const Comparison& comparison, double quantile) {
    const auto next = [quantile](const std::vector<double>& values, size_t& begin, size_t count) {
        const auto from = values.begin() + static_cast<std::ptrdiff_t>(begin);
        begin += count;
        return quantileOf({from, from + static_cast<std::ptrdiff_t>(count)}, quantile);
    };
    std::vector<double> ratios;
    size_t subject = 0;
    size_t floor = 0;
    for (size_t i = 0; i < comparison.subjectRounds.size(); ++i) {
        const double subjectNs = next(comparison.subject.ns, subject, comparison.subjectRounds[i]);
        ratios.push_back(subjectNs / next(comparison.floor.ns, floor, comparison.floorRounds[i]));
    }
    return ratios;
}

double allocationsPerCall(const Costs& costs) {
    return static_cast<double>(costs.allocations) / static_cast<double>(costs.calls);
}

bool meets(const Comparison& comparison, Target target) {
    const double ownAllocations =
            allocationsPerCall(comparison.subject) - allocationsPerCall(comparison.floor);
    if (ownAllocations > static_cast<double>(target.allocations)) return false;
    const double ratio = quantileOf(comparison.subject.ns, target.quantile) /
                         quantileOf(comparison.floor.ns, target.quantile);
    return ratio <= target.ratio ||
           quantileOf(roundRatios(comparison, target.quantile), kNoiseQuantile) <= target.ratio;
}

}  // namespace

Comparison compare(const Round& subject, const Round& floor) {
    Comparison comparison;
    const auto run = [](const Round& round, Costs& costs, std::vector<size_t>& rounds) {
        const size_t before = costs.ns.size();
        round(costs);
        rounds.push_back(costs.ns.size() - before);
    };
    Costs warmUp;
    subject(warmUp);
    floor(warmUp);
    for (int i = 0; i < kRounds; ++i) {
        if (i % 2 == 0) run(subject, comparison.subject, comparison.subjectRounds);
        run(floor, comparison.floor, comparison.floorRounds);
        if (i % 2 != 0) run(subject, comparison.subject, comparison.subjectRounds);
    }
    return comparison;
}

void printCostHeader() {
    printf("%-41s %10s %10s %6s %8s %7s %9s\n", "entry", "ns", "floor ns", "ratio", "at most",
           "allocs", "of floor");
}

bool printCost(const char* entry, const Round& subject, const Round& floor, Target target) {
    Comparison comparison;
    bool isMet = false;
    for (int i = 0; i < kMeasurements && !isMet; ++i) {
        if (i != 0) std::this_thread::sleep_for(kPause);
        comparison = compare(subject, floor);
        isMet = meets(comparison, target);
    }
    const double ns = quantileOf(comparison.subject.ns, target.quantile);
    const double floorNs = quantileOf(comparison.floor.ns, target.quantile);
    printf("%-41s %10.1f %10.1f %6.3f %8.2f %7.1f %9.1f%s\n", entry, ns, floorNs, ns / floorNs,
           target.ratio, allocationsPerCall(comparison.subject),
           allocationsPerCall(comparison.floor), isMet ? "" : "  MISSED");
    return isMet;
}

double quantileOf(std::vector<double> values, double quantile) {
    const auto at = values.begin() +
                    static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * quantile);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

double medianOf(const std::vector<double>& values) {
    return quantileOf(values, 0.5);
}

uint64_t allocations() {
    return tAllocations;
}

int64_t nowNs() {
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

}  // namespace brevold::bench
