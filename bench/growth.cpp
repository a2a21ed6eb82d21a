#include <elf.h>
#include <link.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <thread>
#include <utility>
#include <vector>

#include "bench/device.h"
#include "bench/floors.h"
#include "bench/measure.h"
#include "bench/tables.h"
#include "brevold/scaling_sync_thread.h"

namespace brevold::bench {

namespace {

/** Cost by size. The exponent excludes size 0. */
class GrowthTable {
  public:
    GrowthTable(const char* title, const char* unit) {
        printf("\n%s\n%8s %12s %12s %8s\n", title, unit, "ns", "floor ns", "ratio");
    }

    void add(size_t size, double ns, double floorNs) {
        printf("%8zu %12.1f %12.1f %8.3f\n", size, ns, floorNs, ns / floorNs);
        if (size != 0) mPoints.push_back({std::log(size), std::log(ns), std::log(floorNs)});
    }

    /** Prints the slopes of log cost over log size. */
    void printExponents() const {
        printf("exponent %11.2f %12.2f\n", slope(&Point::cost), slope(&Point::floor));
    }

  private:
    struct Point {
        double size;
        double cost;
        double floor;
    };

    double slope(double Point::*value) const {
        double sizeSum = 0;
        double valueSum = 0;
        for (const Point& point : mPoints) {
            sizeSum += point.size;
            valueSum += point.*value;
        }
        const auto count = static_cast<double>(mPoints.size());
        double covariance = 0;
        double variance = 0;
        for (const Point& point : mPoints) {
            const double distance = point.size - sizeSum / count;
            covariance += distance * (point.*value - valueSum / count);
            variance += distance * distance;
        }
        return covariance / variance;
    }

    std::vector<Point> mPoints;
};

/** Adds the median cost of a report of this layer and of the expression on its name. */
void addReport(GrowthTable& table, size_t size, const std::string& layerName) {
    LayerFrameInfo info = frameOf(layerName);
    const int calls = std::max(5, static_cast<int>(50000 / (layerName.size() + 250)));
    const Comparison report = compare(batch(calls, [&] { brevoldOnFrameAvailable(&info); }),
                                      batch(calls, [&] { packageFloor(layerName); }));
    table.add(size, medianOf(report.subject.ns), medianOf(report.floor.ns));
}

void printGrowthByNameLength() {
    GrowthTable table("Frame report by length of a layer name with a package", "bytes");
    for (size_t length = 16; length <= 65536; length *= 4) {
        std::string name = "com.example/Main";
        name.resize(length, 'x');
        name.replace(length - 2, 2, "#0");
        addReport(table, length, name);
    }
    table.printExponents();
}

/** The library keeps the layers of earlier settings, so each setting adds only the missing ones. */
void printGrowthByDebugLayers() {
    GrowthTable table("Frame report by debug layers", "layers");
    size_t layers = 0;
    for (const size_t size : {0u, 3u, 9u, 20u, 45u}) {
        std::string list;
        for (; layers < size; ++layers)
            list += list.empty() ? "x" : " x";
        if (!list.empty()) addDebugLayerSetting(list);
        addReport(table, size, kLayer);
    }
    table.printExponents();
}

/** Returns the time of a call for its caller while this many threads call continuously. */
template <typename Call>
double contendedNs(size_t threads, Call call) {
    constexpr int64_t kSpanNs = 40000000;
    std::atomic<size_t> ready = 0;
    std::atomic<uint64_t> allCalls = 0;
    std::vector<std::thread> callers;
    for (size_t i = 0; i < threads; ++i) {
        callers.emplace_back([&, i] {
            useProcessor(i);
            ++ready;
            spinUntil([&] { return ready == threads; });
            const int64_t startNs = nowNs();
            uint64_t calls = 0;
            do {
                for (int n = 0; n < 100; ++n)
                    call();
                calls += 100;
            } while (nowNs() - startNs < kSpanNs);
            allCalls += calls;
        });
    }
    for (std::thread& caller : callers)
        caller.join();
    return static_cast<double>(kSpanNs) * static_cast<double>(threads) /
           static_cast<double>(allCalls);
}

template <typename Call, typename Floor>
void printGrowthByThreads(const char* title, Call call, Floor floor) {
    constexpr int kRuns = 9;
    GrowthTable table(title, "threads");
    for (size_t threads = 1; threads <= 4; ++threads) {
        std::vector<double> ns;
        std::vector<double> floorNs;
        for (int i = 0; i < kRuns; ++i) {
            ns.push_back(contendedNs(threads, call));
            floorNs.push_back(contendedNs(threads, floor));
        }
        table.add(threads, medianOf(ns), medianOf(floorNs));
    }
    table.printExponents();
}

struct ImageBytes {
    size_t codeAndConstants;
    size_t data;
};

int addLibrarySegments(dl_phdr_info* image, size_t /*size*/, void* context) {
    if (strstr(image->dlpi_name, "libbrevold.so") == nullptr) return 0;
    auto* const bytes = static_cast<ImageBytes*>(context);
    for (int i = 0; i < image->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = image->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD) continue;
        size_t& kind = (segment.p_flags & PF_W) != 0 ? bytes->data : bytes->codeAndConstants;
        kind += segment.p_memsz;
    }
    return 1;
}

}  // namespace

void printMemory() {
    ImageBytes image = {};
    dl_iterate_phdr(addLibrarySegments, &image);
    const StackBytes stack = stackOf(Channel::Qb);
    printf("\nMemory in bytes\n");
    printf("%-32s %10zu\n", "code and constants", image.codeAndConstants);
    printf("%-32s %10zu\n", "data", image.data);
    printf("%-32s %10zu\n", "a worker's object", sizeof(android::ScalingSyncThread));
    printf("%-32s %10zu\n", "a worker's stack, used so far", stack.used);
    printf("%-32s %10zu\n", "a worker's stack, address space", stack.reserved);
}

void printGrowth() {
    printGrowthByNameLength();
    printf("\nThe threads share %zu processors; more threads than that also wait for a "
           "processor.\n",
           processorCount());
    printGrowthByThreads(
            "brevoldScaling, not due, by compositor threads", [] { brevoldScaling(1, 0); },
            [] { scalingFloor(1, 0); });
    printGrowthByThreads("brevoldRefresh by compositor threads", brevoldRefresh, refreshFloor);
    printGrowthByDebugLayers();
}

}  // namespace brevold::bench
