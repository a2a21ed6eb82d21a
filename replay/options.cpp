#include "replay/options.h"

#include <stdexcept>
#include <utility>

#include "host/device_profile.h"
#include "replay/plot.h"

namespace brevold::replay {

void addOptions(CLI::App& app, Options& options) {
    app.add_option(
               "TRACE", options.traces,
               "Perfetto trace, ftrace text, systrace page or latency dump, optionally gzipped; "
               "- reads standard input")
            ->required();
    app.add_option("--profile", options.profile,
                   "device profile: a file of key=value lines; without it all features are off")
            ->type_name("FILE");
    app.add_option("--set", options.settings,
                   "one entry of the profile; overrides the file; may be repeated")
            ->type_name("KEY=VALUE")
            ->expected(1)
            ->take_all();
    app.add_option("--vs", options.vsSettings,
                   "replay again with this profile entry and compare; may be repeated")
            ->type_name("KEY=VALUE")
            ->expected(1)
            ->take_all();
    app.add_option("--layer", options.timeline.layer,
                   "focused layer, instead of the one with the most frames")
            ->type_name("NAME");
    app.add_option("--refresh-rate", options.timeline.refreshRateHz,
                   "display refresh rate in Hz, instead of the trace's own")
            ->type_name("HZ")
            ->check(CLI::Range(1.0, 1000.0));
    app.add_option("--hints", options.hints, "write the hints that were sent, as CSV")
            ->type_name("FILE");
    app.add_option("--trace-out", options.traceOut,
                   "write the trace with the library's marks and hints added")
            ->type_name("FILE");
    app.add_option("--plot", options.plot, "draw the replay (needs gnuplot)")
            ->type_name("FILE.svg|.png");
    app.add_flag("--json", options.json, "print the summary as one JSON object");
    app.set_version_flag("--version", BREVOLD_VERSION);
}

void checkOptions(const Options& options) {
    if (!options.plot.empty()) plotTerminal(options.plot);
    if (options.traces.size() == 1) return;
    const std::pair<const char*, const std::string&> outputs[] = {{"--hints", options.hints},
                                                                  {"--trace-out", options.traceOut},
                                                                  {"--plot", options.plot}};
    for (const auto& [name, path] : outputs) {
        if (!path.empty()) throw std::runtime_error(std::string(name) + " takes one trace");
    }
}

void applyProfile(const Options& options) {
    if (!options.profile.empty()) host::loadProfile(options.profile);
    for (const std::string& setting : options.settings) {
        try {
            host::setProfileEntry(setting);
        } catch (const host::ProfileError& error) {
            throw host::ProfileError("--set " + setting + ": " + error.what());
        }
    }
}

}  // namespace brevold::replay
