#include "sim/workload.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <utility>

#include "sim/built_in_workloads.h"
#include "sim/exact_math.h"

namespace brevold::sim {

const Words<Pace> kPaceWords = {
        {"free", Pace::Free}, {"vsync", Pace::Vsync}, {"video", Pace::Video}};

namespace {

constexpr double kMinWorkMs = 0.2;
constexpr double kMinPhaseMs = 3000.0;
constexpr double kMaxPhaseMs = 9000.0;

using Setter = void (*)(Workload&, std::string_view);

template <double Workload::*kMember, int kMax>
void setNumber(Workload& workload, std::string_view value) {
    workload.*kMember = numberIn(value, 0, kMax);
}

const std::map<std::string_view, Setter> kSettings = {
        {"pace", [](Workload& w, std::string_view v) { w.pace = parseWord(v, kPaceWords); }},
        {"refresh-hz", [](Workload& w, std::string_view v) { w.refreshHz = numberIn(v, 1, 1000); }},
        {"buffers", [](Workload& w, std::string_view v) { w.buffers = integerIn(v, 2, 64); }},
        {"mean-ms", setNumber<&Workload::meanMs, 10000>},
        {"sigma", setNumber<&Workload::sigma, 3>},
        {"rho", setNumber<&Workload::rho, 1>},
        {"phase", setNumber<&Workload::phase, 1>},
        {"spike-share", setNumber<&Workload::spikeShare, 1>},
        {"spike-min", setNumber<&Workload::spikeMin, 1000>},
        {"spike-max", setNumber<&Workload::spikeMax, 1000>},
        {"gpu-ms", setNumber<&Workload::gpuMs, 10000>},
        {"gpu-sigma", setNumber<&Workload::gpuSigma, 3>},
        {"frame-refreshes",
         [](Workload& w, std::string_view v) { w.frameRefreshes = integerIn(v, 1, 1000); }},
        {"due-frames", [](Workload& w, std::string_view v) { w.dueFrames = integerIn(v, 0, 64); }},
        {"burst-min-s", setNumber<&Workload::burstMinS, 1000>},
        {"burst-max-s", setNumber<&Workload::burstMaxS, 1000>},
        {"gap-min-s", setNumber<&Workload::gapMinS, 1000>},
        {"gap-max-s", setNumber<&Workload::gapMaxS, 1000>},
};

void check(const Workload& workload) {
    const auto fail = [&](const char* message) {
        throw InputError(workload.name + ": " + message);
    };
    if (workload.spikeMin > workload.spikeMax) fail("spike-min is above spike-max");
    if (workload.burstMinS > workload.burstMaxS) fail("burst-min-s is above burst-max-s");
    if (workload.gapMinS > workload.gapMaxS) fail("gap-min-s is above gap-max-s");
    if (workload.pace != Pace::Video && (workload.frameRefreshes != 1 || workload.dueFrames != 0)) {
        fail("frame-refreshes and due-frames need pace=video");
    }
    if (workload.pace != Pace::Vsync && workload.gapMaxS > 0.0) fail("gaps need pace=vsync");
    if (workload.gapMaxS > 0.0 && workload.burstMinS <= 0.0) fail("gaps need burst-min-s above 0");
}

const RecordedFrame& recordedFrame(const RecordedWork& recording, int64_t index) {
    return recording.frames[static_cast<size_t>(index) % recording.frames.size()];
}

int64_t toNs(double ms) {
    return std::llround(ms * 1e6);
}

}  // namespace

std::vector<std::string> builtInWorkloads() {
    std::vector<std::string> names;
    for (const auto& [name, text] : kBuiltInWorkloads)
        names.emplace_back(name);
    return names;
}

Workload readWorkload(const std::string& nameOrPath) {
    for (const auto& [name, text] : kBuiltInWorkloads) {
        if (nameOrPath == name) return parseWorkload(text, name);
    }
    if (!std::filesystem::exists(nameOrPath)) {
        throw InputError(fmt::format("{}: no such file, and the built-in workloads are {}",
                                     nameOrPath, fmt::join(builtInWorkloads(), ", ")));
    }
    return parseWorkload(readFile(nameOrPath), nameOrPath);
}

Workload parseWorkload(std::string_view text, const std::string& name) {
    Workload workload;
    workload.name = name;
    bool hasMean = false;
    const ApplySetting apply = [&](std::string_view key, std::string_view value) {
        const auto found = kSettings.find(key);
        if (found == kSettings.end()) {
            std::vector<std::string_view> keys;
            for (const auto& [known, setter] : kSettings)
                keys.push_back(known);
            throw InputError(
                    fmt::format("unknown key \"{}\"; the keys are {}", key, fmt::join(keys, ", ")));
        }
        found->second(workload, value);
        hasMean = hasMean || key == "mean-ms";
    };
    applySettings(text, name, apply, [](std::string_view) { return false; });
    if (!hasMean) throw InputError(name + ": mean-ms=MS is missing: the median work of a frame");
    check(workload);
    return workload;
}

Workload recordedWorkload(const std::string& name, RecordedWork recording) {
    // The depth does not include the buffers of the display and the application.
    constexpr int32_t kUsualBuffers = 3;
    Workload workload;
    workload.name = name;
    workload.pace = Pace::Recorded;
    workload.refreshHz = 1e9 / static_cast<double>(recording.periodNs);
    workload.buffers = std::max(kUsualBuffers, recording.maxDepth + 1);
    workload.recording = std::make_shared<const RecordedWork>(std::move(recording));
    return workload;
}

FrameTiming Workload::timing(int64_t index) const {
    if (!recording) {
        const int64_t earliestNs = index * framePeriodNs();
        return {earliestNs, earliestNs + dueFrames * framePeriodNs(), 0};
    }
    const int64_t startNs =
            index / static_cast<int64_t>(recording->frames.size()) * recording->lengthNs;
    const RecordedFrame& frame = recordedFrame(*recording, index);
    const auto since = [=](int64_t timeNs) { return timeNs == 0 ? 0 : startNs + timeNs; };
    return {startNs + frame.earliestNs, since(frame.dueNs), since(frame.vsyncNs)};
}

FrameWork WorkSource::frame(int64_t index) {
    const Workload& w = mWorkload;
    if (w.recording) return {recordedFrame(*w.recording, index).workNs, 0};
    for (; mNextIndex <= index; ++mNextIndex) {
        const double innovation = w.sigma * std::sqrt(1.0 - w.rho * w.rho);
        mLogarithm = w.rho * mLogarithm +
                     innovation * mRandom.normal(Stream::Work, static_cast<uint64_t>(mNextIndex));
    }
    while (index * w.framePeriodNs() >= mPhaseEndNs) {
        const auto phase = static_cast<uint64_t>(++mPhaseIndex);
        mPhaseEndNs += toNs(mRandom.uniform(Stream::PhaseLength, phase, kMinPhaseMs, kMaxPhaseMs));
        mPhaseFactor = mRandom.uniform(Stream::PhaseFactor, phase, 1.0 - w.phase, 1.0 + w.phase);
    }
    const auto at = static_cast<uint64_t>(index);
    double workMs = w.meanMs * expExact(mLogarithm) * mPhaseFactor;
    if (mRandom.uniform(Stream::SpikeChance, at) < w.spikeShare) {
        workMs *= mRandom.uniform(Stream::SpikeFactor, at, w.spikeMin, w.spikeMax);
    }
    const double gpuMs = w.gpuMs * expExact(w.gpuSigma * mRandom.normal(Stream::GpuWork, at));
    return {toNs(std::max(workMs, kMinWorkMs)), toNs(gpuMs)};
}

bool BurstSource::isActive(int64_t timeNs) {
    const Workload& w = mWorkload;
    if (w.gapMaxS <= 0.0) return true;
    while (timeNs >= mGapEndNs) {
        const auto burst = static_cast<uint64_t>(mNextBurst++);
        mBurstEndNs = mGapEndNs + toNs(1e3 * mRandom.uniform(Stream::BurstLength, burst,
                                                             w.burstMinS, w.burstMaxS));
        mGapEndNs = mBurstEndNs +
                    toNs(1e3 * mRandom.uniform(Stream::GapLength, burst, w.gapMinS, w.gapMaxS));
    }
    return timeNs < mBurstEndNs;
}

}  // namespace brevold::sim
