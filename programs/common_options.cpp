#include "programs/common_options.h"

#include <fmt/format.h>

#include <algorithm>
#include <thread>

#include "base/text.h"
#include "host/device_profile.h"
#include "report/labels.h"

namespace brevold {

namespace {

using replay::BoostDepth;

constexpr int kMaxJobs = 1024;

using UseEntry = void (*)(const std::string& entry);

void useEntries(const char* option, const std::vector<std::string>& entries, UseEntry use) {
    for (const std::string& entry : entries) {
        try {
            use(entry);
        } catch (const host::ProfileError& error) {
            throw host::ProfileError(fmt::format("{} {}: {}", option, entry, error.what()));
        }
    }
}

void addProfileOptions(CLI::App& app, CommonOptions& options) {
    app.add_option("--profile", options.profile,
                   "device profile: a file of key=value lines, or the output of getprop; without "
                   "it all features are off")
            ->type_name("FILE")
            ->check(notEmpty())
            ->group(kDeviceGroup);
    addEntries(app, "--set", options.settings,
               "one entry of the profile; overrides the file; may be repeated");
    addEntries(app, "--vs", options.vsSettings,
               "run again with this profile entry and compare; may be repeated: all entries apply "
               "to the second run");
    const auto left = report::boostDepthWord(BoostDepth::Left);
    const auto found = report::boostDepthWord(BoostDepth::Found);
    app.add_option_function<std::string>(
               "--boost-depth",
               [&options, found](const std::string& word) {
                   options.boostDepth = word == found ? BoostDepth::Found : BoostDepth::Left;
               },
               "queued frames that decide on a boost when a composition ends: those left in the "
               "queue (default), or the maximum found since the previous composition")
            ->type_name(fmt::format("{}|{}", left, found))
            ->check(CLI::IsMember({left, found}).description(""))
            ->group(kDeviceGroup);
}

}  // namespace

void addCommonOptions(CLI::App& app, CommonOptions& options) {
    addProfileOptions(app, options);
    app.add_option("--trace-out", options.traceOut)
            ->type_name("FILE")
            ->check(notEmpty())
            ->group(kOutputGroup);
    app.add_option("--plot", options.plot)
            ->type_name("FILE.svg|.png")
            ->check(notEmpty())
            ->group(kOutputGroup);
    app.add_flag("--json", options.json, "print the result as one JSON object")
            ->group(kOutputGroup);
    options.jobs = std::max(1u, std::thread::hardware_concurrency());
    app.add_option("--jobs", options.jobs,
                   "processes that work at the same time (default: the number of processors); the "
                   "output does not depend on it")
            ->type_name("N")
            ->check(CLI::Range(1, kMaxJobs).description(""));
    app.set_version_flag("--version", BREVOLD_VERSION);
}

CLI::Option* addEntries(CLI::App& app, const std::string& name, std::vector<std::string>& entries,
                        const std::string& description) {
    return app.add_option(name, entries, description)
            ->type_name("KEY=VALUE")
            ->expected(1)
            ->take_all()
            ->allow_extra_args(false)
            ->group(kDeviceGroup);
}

CLI::Option* addLayer(CLI::App& app, std::optional<std::string>& layer) {
    return app
            .add_option("--layer", layer,
                        "focused layer: its name, or a part that no other layer's name has; "
                        "without it, the application's layer with the most frames; for a "
                        "latency dump, the name of its layer")
            ->type_name("NAME")
            ->check(notEmpty())
            ->group(kTraceGroup);
}

CLI::Validator notEmpty() {
    return CLI::Validator(
            [](const std::string& text) { return text.empty() ? "expected a name" : ""; }, "");
}

CLI::Validator numberFrom(double min, double max) {
    return CLI::Validator(
            [=](const std::string& text) {
                double number = 0.0;
                const bool isNumber = CLI::detail::lexical_cast(text, number);
                // "nan" is a number to the parser, but fails the comparisons.
                if (isNumber && number >= min && number <= max) return std::string();
                return fmt::format("expected a number from {} to {}, got {}", min, max,
                                   quote(text));
            },
            "");
}

void applyProfile(const CommonOptions& options) {
    if (!options.profile.empty()) host::loadProfile(options.profile);
    useEntries("--set", options.settings, host::setProfileEntry);
    useEntries("--vs", options.vsSettings, host::checkProfileEntry);
}

}  // namespace brevold
