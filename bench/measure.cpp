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

// The program's operators serve every library in the process.
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
constexpr int kMeasurements = 3;
constexpr auto kPause = std::chrono::seconds(2);

double allocationsPerCall(const Costs& costs) {
    return static_cast<double>(costs.allocations) / static_cast<double>(costs.calls);
}

double ratioOf(const Comparison& comparison, double quantile) {
    return quantileOf(comparison.subject.ns, quantile) / quantileOf(comparison.floor.ns, quantile);
}

bool meets(const Comparison& comparison, Target target) {
    const double ownAllocations =
            allocationsPerCall(comparison.subject) - allocationsPerCall(comparison.floor);
    return ownAllocations <= static_cast<double>(target.allocations) &&
           ratioOf(comparison, target.quantile) <= target.ratio;
}

}  // namespace

Comparison compare(const Round& subject, const Round& floor) {
    Costs warmUp;
    subject(warmUp);
    floor(warmUp);
    Comparison comparison;
    for (int i = 0; i < kRounds; ++i) {
        if (i % 2 == 0) subject(comparison.subject);
        floor(comparison.floor);
        if (i % 2 != 0) subject(comparison.subject);
    }
    return comparison;
}

void printCostHeader() {
    printf("%-41s %10s %10s %6s %8s %7s %9s\n", "entry", "ns", "floor ns", "ratio", "max", "allocs",
           "of floor");
}

bool printCost(const char* entry, const Round& subject, const Round& floor, Target target) {
    Comparison comparison;
    bool isMet = false;
    for (int i = 0; i < kMeasurements && !isMet; ++i) {
        if (i != 0) std::this_thread::sleep_for(kPause);
        comparison = compare(subject, floor);
        isMet = meets(comparison, target);
    }
    printf("%-41s %10.1f %10.1f %6.3f %8.2f %7.1f %9.1f%s\n", entry,
           quantileOf(comparison.subject.ns, target.quantile),
           quantileOf(comparison.floor.ns, target.quantile), ratioOf(comparison, target.quantile),
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
