#include "sim/trace_writer.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

#include <cmath>

#include "base/time_units.h"
#include "sim/library.h"
#include "sim/simulation.h"

namespace brevold::sim {

namespace {

constexpr int kCompositorProcess = 612;
constexpr int kAppProcess = 4711;
constexpr int kAppCpu = 4;

}  // namespace

const TraceWriter::Thread TraceWriter::kIdle = {"swapper", 0, 0};
const TraceWriter::Thread TraceWriter::kApp = {"com.example.sim", kAppProcess, 4711};
const TraceWriter::Thread TraceWriter::kCompositor = {"surfaceflinger", kCompositorProcess, 612};
const TraceWriter::Thread TraceWriter::kBinder = {"Binder:612_1", kCompositorProcess, 655};
const TraceWriter::Thread TraceWriter::kVsync = {"DispSync", kCompositorProcess, 640};

TraceWriter::TraceWriter(const Device& device, int64_t periodNs, std::ostream& out)
      : mDevice(device), mOut(out) {
    mOut << "# tracer: nop\n#\n# Simulated\n#\n";
    mark(kStartNs, kCompositor, fmt::format("C|{}|VSR-setPeriod|{}", kCompositorProcess, periodNs));
}

void TraceWriter::onVsync(int64_t nowNs) {
    mVsyncValue = !mVsyncValue;
    mark(nowNs, kVsync, fmt::format("C|{}|VSYNC-sf|{:d}", kCompositorProcess, mVsyncValue));
}

void TraceWriter::onTask(int64_t nowNs, Task task, size_t /*cluster*/, bool isBusy) {
    const Thread& thread = task == Task::App ? kApp : kCompositor;
    const Thread& from = isBusy ? kIdle : thread;
    const Thread& to = isBusy ? thread : kIdle;
    const bool isQueue = task == Task::App && !isBusy;
    if (isQueue) call(nowNs, "queueBuffer");
    line(nowNs, from, cpuOf(task),
         fmt::format("sched_switch: prev_comm={} prev_pid={} prev_prio=120 prev_state={} ==> "
                     "next_comm={} next_pid={} next_prio=120",
                     from.name, from.tid, isBusy ? 'R' : 'S', to.name, to.tid));
    const bool isDequeue = task == Task::App && isBusy;
    if (isDequeue) call(nowNs, "dequeueBuffer");
}

void TraceWriter::onFrequency(int64_t nowNs, size_t cluster, const OperatingPoint& point) {
    for (const Task task : {Task::App, Task::Compositor}) {
        const bool isHere =
                cluster == (task == Task::App ? mDevice.appCluster : mDevice.compositorCluster);
        if (!isHere) continue;
        line(nowNs, kIdle, cpuOf(task),
             fmt::format("cpu_frequency: state={} cpu_id={}", std::llround(point.mhz * 1e3),
                         cpuOf(task)));
    }
}

void TraceWriter::onQueue(int64_t nowNs, const Frame& /*frame*/, int32_t depth) {
    this->depth(nowNs, kBinder, depth);
}

void TraceWriter::onLatch(int64_t nowNs, const Frame& /*frame*/, int32_t depth) {
    mark(nowNs, kCompositor, fmt::format("B|{}|composite", kCompositorProcess));
    this->depth(nowNs, kCompositor, depth);
}

void TraceWriter::onCompositionEnd(int64_t nowNs) {
    mark(nowNs, kCompositor, fmt::format("E|{}", kCompositorProcess));
}

int TraceWriter::cpuOf(Task task) const {
    const bool isApp = task == Task::App;
    const bool sharesCluster = mDevice.appCluster == mDevice.compositorCluster;
    const size_t index = isApp && sharesCluster ? 1 : 0;
    const std::vector<int32_t>& cpus =
            mDevice.clusters[isApp ? mDevice.appCluster : mDevice.compositorCluster].cpus;
    if (!cpus.empty()) return cpus[index];
    return isApp && !sharesCluster ? kAppCpu : static_cast<int>(index);
}

void TraceWriter::call(int64_t nowNs, const char* function) {
    mark(nowNs, kApp, fmt::format("B|{}|{}", kAppProcess, function));
    mark(nowNs, kApp, fmt::format("E|{}", kAppProcess));
}

void TraceWriter::line(int64_t nowNs, const Thread& thread, int cpu, const std::string& event) {
    fmt::print(mOut, "{:>16}-{:<5} ({:5}) [{:03}] .... {:5}.{:09}: {}\n", thread.name, thread.tid,
               thread.process, cpu, nowNs / kNsPerSecond, nowNs % kNsPerSecond, event);
}

void TraceWriter::mark(int64_t nowNs, const Thread& thread, const std::string& text) {
    const Task task = thread.process == kAppProcess ? Task::App : Task::Compositor;
    line(nowNs, thread, cpuOf(task), "tracing_mark_write: " + text);
}

void TraceWriter::depth(int64_t nowNs, const Thread& thread, int32_t depth) {
    mark(nowNs, thread,
         fmt::format("C|{}|BufferTX - {}|{}", kCompositorProcess, kLayerName, depth));
}

}  // namespace brevold::sim
