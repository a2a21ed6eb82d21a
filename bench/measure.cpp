#include "bench/measure.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <new>

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

/** The number of values below a median is binomial, so two of the values bound it. */
Spread spreadOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const auto count = static_cast<double>(values.size());
    const auto below = static_cast<size_t>(std::max(0.0, (count - 2.58 * std::sqrt(count)) / 2));
    return {quantileOf(values, 0.5), values[below], values[values.size() - 1 - below]};
}

void printCostHeader() {
    printf("%-36s %10s %10s %6s %13s %6s %7s %8s\n", "", "ns", "floor ns", "ratio", "spread", "max",
           "allocs", "of floor");
}

bool printCost(const char* entry, const Round& subject, const Round& floor, Target target,
               int rounds) {
    subject();
    floor();
    std::vector<double> ns;
    std::vector<double> floorNs;
    std::vector<double> ratios;
    double own = 0;
    double ofFloor = 0;
    for (int i = 0; i < rounds; ++i) {
        Costs first = i % 2 == 0 ? subject() : floor();
        Costs second = i % 2 == 0 ? floor() : subject();
        if (i % 2 != 0) std::swap(first, second);
        ns.push_back(first.ns);
        floorNs.push_back(second.ns);
        ratios.push_back(first.ns / second.ns);
        own += first.allocations / rounds;
        ofFloor += second.allocations / rounds;
    }
    const Spread ratio = spreadOf(ratios);
    const bool isMet = ratio.low <= target.ratio && own - ofFloor <= target.allocations + 0.001;
    printf("%-36s %10.1f %10.1f %6.2f %6.2f-%6.2f %6.2f %7.1f %8.1f%s\n", entry,
           quantileOf(ns, 0.5), quantileOf(floorNs, 0.5), ratio.median, ratio.low, ratio.high,
           target.ratio, own, ofFloor, isMet ? "" : "  MISSED");
    fflush(stdout);
    return isMet;
}

double quantileOf(std::vector<double> values, double quantile) {
    const auto at = values.begin() +
                    static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * quantile);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

uint64_t allocations() {
    return tAllocations;
}

int64_t nowNs() {
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

int64_t processorNs() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return int64_t{time.tv_sec} * 1000000000 + time.tv_nsec;
}

}  // namespace brevold::bench
