#include "sim/device.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>

#include "base/text.h"

namespace brevold::sim {

const Words<GovernorKind> kGovernorWords = {{"schedutil", GovernorKind::Schedutil},
                                            {"performance", GovernorKind::Performance},
                                            {"fixed", GovernorKind::Fixed}};
const Words<DownReading> kDownWords = {{"cap", DownReading::Cap},
                                       {"governor", DownReading::Governor},
                                       {"frame", DownReading::Frame}};
const Words<UpReading> kUpWords = {{"governor", UpReading::Governor}, {"none", UpReading::None}};
const Words<BoostTarget> kBoostWords = {{"compositor", BoostTarget::Compositor},
                                        {"all", BoostTarget::All},
                                        {"none", BoostTarget::None}};

namespace {

constexpr double kMaxMhz = 100'000.0;
constexpr double kMaxMw = 1e6;
constexpr double kMaxMs = 1000.0;
constexpr double kMinSpeed = 0.01;
constexpr int32_t kMaxCpu = 1023;
// A frequency computed from a share of the maximum may miss its own point by a rounding error.
constexpr double kRounding = 1.0 - 1e-9;

class DeviceParser {
  public:
    explicit DeviceParser(std::string name) { mDevice.name = std::move(name); }

    void apply(std::string_view key, std::string_view value) {
        constexpr std::string_view kPrefix = "cluster.";
        if (key.substr(0, kPrefix.size()) == kPrefix) {
            std::string_view property = key.substr(kPrefix.size());
            const std::string_view cluster = takeUntil('.', &property);
            if (!cluster.empty() && applyToCluster(mClusters[indexOf(cluster)], property, value)) {
                return;
            }
        } else if (const auto found = settings().find(key); found != settings().end()) {
            found->second(*this, value);
            return;
        }
        throw InputError(
                fmt::format("unknown key \"{}\"; the keys are cluster.NAME.opp, "
                            ".coefficient, .cpus, .memory-share, .static-mw, {}",
                            key, keys()));
    }

    Device finish() {
        for (Cluster& cluster : mClusters)
            mDevice.clusters.push_back(finishCluster(cluster));
        mDevice.appCluster = findCluster("app.cluster", mAppCluster, "application");
        mDevice.compositorCluster =
                findCluster("compositor.cluster", mCompositorCluster, "compositor");
        if (mDevice.appCluster == mDevice.compositorCluster &&
            mDevice.clusters[mDevice.appCluster].cpus.size() == 1) {
            fail("application and compositor need two processors in their cluster");
        }
        return std::move(mDevice);
    }

  private:
    enum class Unit : uint8_t { Milliwatts, Millivolts };
    struct Entry {
        double mhz;
        double value;
        Unit unit;
    };
    struct Cluster {
        ClusterSpec spec;
        std::vector<Entry> entries;
        double coefficient = 0.0;
    };
    using Setter = void (*)(DeviceParser&, std::string_view);

    static const std::map<std::string_view, Setter>& settings() {
        using Parser = DeviceParser;
        using View = std::string_view;
        static const std::map<View, Setter> kSettings = {
                {"app.cluster", [](Parser& p, View v) { p.mAppCluster = v; }},
                {"compositor.cluster", [](Parser& p, View v) { p.mCompositorCluster = v; }},
                {"compositor.work-ms",
                 [](Parser& p, View v) {
                     p.mDevice.compositionWorkNs = millisecondsIn(v, 0, kMaxMs);
                 }},
                {"governor",
                 [](Parser& p, View v) { p.governor().kind = parseWord(v, kGovernorWords); }},
                {"governor.headroom",
                 [](Parser& p, View v) { p.governor().headroom = numberIn(v, 1, 10); }},
                {"governor.half-life-ms",
                 [](Parser& p, View v) { p.governor().halfLifeNs = millisecondsIn(v, 1, kMaxMs); }},
                {"governor.tick-ms",
                 [](Parser& p, View v) { p.governor().tickNs = millisecondsIn(v, 0.1, kMaxMs); }},
                {"governor.up-limit-ms",
                 [](Parser& p, View v) { p.governor().upLimitNs = millisecondsIn(v, 0, kMaxMs); }},
                {"governor.down-limit-ms",
                 [](Parser& p, View v) {
                     p.governor().downLimitNs = millisecondsIn(v, 0, kMaxMs);
                 }},
                {"governor.util-est",
                 [](Parser& p, View v) { p.governor().hasUtilEst = integerIn(v, 0, 1) == 1; }},
                {"governor.floor",
                 [](Parser& p, View v) { p.governor().floor = numberIn(v, 0, 1); }},
                {"governor.background",
                 [](Parser& p, View v) { p.governor().background = numberIn(v, 0, 1); }},
                {"governor.fixed-share",
                 [](Parser& p, View v) { p.governor().fixedShare = numberIn(v, 0, 1); }},
                {"service.down",
                 [](Parser& p, View v) { p.service().down = parseWord(v, kDownWords); }},
                {"service.up", [](Parser& p, View v) { p.service().up = parseWord(v, kUpWords); }},
                {"service.boost",
                 [](Parser& p, View v) { p.service().boost = parseWord(v, kBoostWords); }},
                {"service.latency-ms",
                 [](Parser& p, View v) { p.service().latencyNs = millisecondsIn(v, 0, kMaxMs); }},
                {"display.buffers",
                 [](Parser& p, View v) { p.mDevice.buffers = integerIn(v, 2, 64); }},
                {"trace.speed",
                 [](Parser& p, View v) { p.mDevice.recordedSpeed = numberIn(v, kMinSpeed, 1); }},
                {"display.latch-ms",
                 [](Parser& p, View v) { p.mDevice.latchNs = millisecondsIn(v, 0, kMaxMs); }},
        };
        return kSettings;
    }

    static std::string keys() {
        std::vector<std::string_view> names;
        for (const auto& [key, setter] : settings())
            names.push_back(key);
        return fmt::format("{}", fmt::join(names, ", "));
    }

    GovernorSpec& governor() { return mDevice.governor; }
    ServiceSpec& service() { return mDevice.service; }

    size_t indexOf(std::string_view name) {
        const auto found = std::find_if(mClusters.begin(), mClusters.end(),
                                        [&](const Cluster& c) { return c.spec.name == name; });
        if (found != mClusters.end()) return static_cast<size_t>(found - mClusters.begin());
        mClusters.emplace_back().spec.name = name;
        return mClusters.size() - 1;
    }

    static bool applyToCluster(Cluster& cluster, std::string_view property,
                               std::string_view value) {
        if (property == "opp") {
            addPoint(cluster, value);
        } else if (property == "coefficient") {
            cluster.coefficient = numberIn(value, 0, kMaxMw);
        } else if (property == "memory-share") {
            cluster.spec.memoryShare = numberIn(value, 0, 1);
        } else if (property == "cpus") {
            cluster.spec.cpus = parseCpus(value);
        } else if (property == "static-mw") {
            cluster.spec.staticMw = numberIn(value, 0, kMaxMw);
        } else {
            return false;
        }
        return true;
    }

    /** "844.8 MHz 172.2 mW" or "903 MHz 700 mV" */
    static void addPoint(Cluster& cluster, std::string_view value) {
        std::vector<std::string_view> words;
        for (std::string_view rest = value; !rest.empty(); rest = trimStart(rest))
            words.push_back(takeUntil(' ', &rest));
        if (words.size() != 4 || words[1] != "MHz" || (words[3] != "mW" && words[3] != "mV")) {
            throw InputError(fmt::format(
                    "expected \"NUMBER MHz NUMBER mW\" or \"NUMBER MHz NUMBER mV\", got \"{}\"",
                    value));
        }
        const Entry entry = {numberIn(words[0], 1, kMaxMhz), numberIn(words[2], 0, kMaxMw),
                             words[3] == "mW" ? Unit::Milliwatts : Unit::Millivolts};
        for (const Entry& other : cluster.entries) {
            if (other.mhz == entry.mhz) {
                throw InputError(fmt::format("a second operating point at {} MHz", entry.mhz));
            }
        }
        cluster.entries.push_back(entry);
    }

    /** "0-3" or "4,6-7" */
    static std::vector<int32_t> parseCpus(std::string_view value) {
        std::vector<int32_t> cpus;
        while (!value.empty()) {
            std::string_view last = takeUntil(',', &value);
            const std::string_view first = takeUntil('-', &last);
            const int32_t begin = integerIn(first, 0, kMaxCpu);
            const int32_t end = last.empty() ? begin : integerIn(last, begin, kMaxCpu);
            for (int32_t cpu = begin; cpu <= end; ++cpu)
                cpus.push_back(cpu);
        }
        return cpus;
    }

    ClusterSpec finishCluster(Cluster& cluster) const {
        ClusterSpec& spec = cluster.spec;
        for (const Entry& entry : cluster.entries) {
            double mw = entry.value;
            if (entry.unit == Unit::Millivolts) {
                if (cluster.coefficient == 0.0) {
                    fail(fmt::format("cluster.{}.opp in mV needs cluster.{}.coefficient", spec.name,
                                     spec.name));
                }
                const double volts = entry.value / 1e3;
                mw = cluster.coefficient * volts * volts * entry.mhz / 1e3;
            }
            spec.points.push_back({entry.mhz, mw});
        }
        if (spec.points.empty()) fail(fmt::format("cluster.{}.opp is missing", spec.name));
        std::sort(spec.points.begin(), spec.points.end(),
                  [](const OperatingPoint& a, const OperatingPoint& b) { return a.mhz < b.mhz; });
        return std::move(spec);
    }

    size_t findCluster(const char* key, std::string_view name, const char* task) const {
        if (name.empty()) {
            fail(fmt::format("{}=NAME is missing: the cluster where the {} runs", key, task));
        }
        for (size_t i = 0; i < mDevice.clusters.size(); ++i) {
            if (mDevice.clusters[i].name == name) return i;
        }
        fail(fmt::format("{0}={1}: there is no cluster.{1}.opp", key, name));
    }

    [[noreturn]] void fail(const std::string& message) const {
        throw InputError(mDevice.name + ": " + message);
    }

    Device mDevice;
    std::vector<Cluster> mClusters;
    std::string mAppCluster;
    std::string mCompositorCluster;
};

/** A cluster has many of these entries. */
bool isPoint(std::string_view key) {
    constexpr std::string_view kSuffix = ".opp";
    return key.size() >= kSuffix.size() && key.substr(key.size() - kSuffix.size()) == kSuffix;
}

}  // namespace

double ClusterSpec::speedAtMhz(double mhz) const {
    return 1.0 / ((1.0 - memoryShare) / (mhz / maxMhz()) + memoryShare);
}

size_t ClusterSpec::pointForMhz(double mhz) const {
    const auto found = std::partition_point(
            points.begin(), std::prev(points.end()),
            [=](const OperatingPoint& point) { return point.mhz < mhz * kRounding; });
    return static_cast<size_t>(found - points.begin());
}

std::optional<size_t> Device::clusterOf(int32_t cpu) const {
    for (size_t i = 0; i < clusters.size(); ++i) {
        const std::vector<int32_t>& cpus = clusters[i].cpus;
        if (std::find(cpus.begin(), cpus.end(), cpu) != cpus.end()) return i;
    }
    return {};
}

Device parseDevice(std::string_view text, const std::string& name,
                   const std::vector<std::string>& settings) {
    DeviceParser parser(name);
    const ApplySetting apply = [&](auto key, auto value) { parser.apply(key, value); };
    applySettings(text, name, apply, isPoint);
    for (const std::string& setting : settings)
        applySetting(setting, "--device-set", apply);
    return parser.finish();
}

Device readDevice(const std::string& path, const std::vector<std::string>& settings) {
    return parseDevice(readFile(path), path, settings);
}

}  // namespace brevold::sim
