#include "programs/sim_options.h"

#include "host/device_profile.h"
#include "sim/sweep.h"

namespace brevold {

namespace {

using namespace brevold::sim;

constexpr double kMinSeconds = 1.0;
constexpr double kMaxSeconds = 1e6;

template <typename T>
std::vector<std::string> namesOf(const Words<T>& words) {
    std::vector<std::string> names;
    for (const auto& [name, value] : words)
        names.emplace_back(name);
    return names;
}

template <typename T>
std::string joinWords(const Words<T>& words) {
    return CLI::detail::join(namesOf(words), "|");
}

void addEntries(CLI::App& app, const char* name, std::vector<std::string>& entries,
                const char* description) {
    app.add_option(name, entries, description)->type_name("KEY=VALUE")->expected(1)->take_all();
}

/** CLI::Range accepts a number that is not one. */
std::string isDuration(const std::string& text) {
    try {
        numberIn(text, kMinSeconds, kMaxSeconds);
        return "";
    } catch (const InputError& error) {
        return error.what();
    }
}

}  // namespace

void addOptions(CLI::App& app, SimOptions& options) {
    app.add_option("--device", options.device, "the simulated device: a file of key=value lines")
            ->type_name("FILE")
            ->required();
    addEntries(app, "--device-set", options.deviceSettings,
               "one entry of the device file, overrides the file; repeatable");
    app.add_option("--profile", options.profile,
                   "the library's settings on the device: a file of key=value lines")
            ->type_name("FILE");
    addEntries(app, "--set", options.settings,
               "one entry of the profile, overrides the file; repeatable");
    addEntries(app, "--vs", options.experiment.vsSettings,
               "simulate a second variant with this entry changed; all --vs are one variant");
    app.add_option("--workload", options.workload,
                   "a built-in workload or a file of key=value lines; built in are " +
                           CLI::detail::join(builtInWorkloads(), ", "))
            ->type_name("NAME|FILE")
            ->required();
    app.add_option("--seeds", options.experiment.seeds, "runs per variant, each with other work")
            ->type_name("N")
            ->check(CLI::Range(1, 1000))
            ->capture_default_str();
    app.add_option("--seconds", options.seconds, "simulated time of each run, after 3 s of warm-up")
            ->type_name("S")
            ->check(CLI::Validator(isDuration, ""))
            ->capture_default_str();
    app.add_option("--boost-depth", options.boostDepth,
                   "queue depth that the compositor passes: the one left at the end of a "
                   "composition, or "
                   "the maximum found since the previous one")
            ->type_name(joinWords(kBoostDepthWords))
            ->check(CLI::IsMember(namesOf(kBoostDepthWords)))
            ->capture_default_str();
    app.add_option("--sweep", options.sweep,
                   "one table over all readings of the service, governors, numbers of buffers, or "
                   "boost depths")
            ->type_name(joinWords(kSweepWords))
            ->check(CLI::IsMember(namesOf(kSweepWords)));
    app.add_flag("--json", options.json, "print the result as one JSON object");
    app.add_option(
               "--plot", options.plot,
               "draw the runs of the first seed, or a sweep's energy against missed vsyncs, with "
               "gnuplot")
            ->type_name("FILE.svg|.png");
    app.add_option("--trace-out", options.traceOut,
                   "write the run of the first seed, as given, as a trace for viewers and "
                   "brevold-replay")
            ->type_name("FILE")
            ->excludes("--sweep");
    app.add_option("--jobs", options.experiment.jobs, "runs at the same time")
            ->type_name("N")
            ->check(CLI::Range(1, 1024))
            ->default_str("number of processors");
    app.set_version_flag("--version", BREVOLD_VERSION);
}

void applyProfile(const SimOptions& options) {
    if (!options.profile.empty()) host::loadProfile(options.profile);
    for (const std::string& setting : options.settings) {
        try {
            host::setProfileEntry(setting);
        } catch (const host::ProfileError& error) {
            throw host::ProfileError("--set " + setting + ": " + error.what());
        }
    }
}

}  // namespace brevold
