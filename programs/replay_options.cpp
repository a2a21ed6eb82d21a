#include "programs/replay_options.h"

#include <stdexcept>
#include <utility>

#include "base/file_identity.h"
#include "host/device_profile.h"
#include "plot/plot.h"
#include "report/labels.h"

namespace brevold {

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
    const auto layer =
            app.add_option("--layer", options.timeline.layer,
                           "focused layer: its name, or a part that no other layer's name has; "
                           "without it, the application's layer with the most frames; for a "
                           "latency dump, the name of its layer")
                    ->type_name("NAME");
    app.add_flag("--follow-focus", options.timeline.followsFocus,
                 "move the focus each second to the application's layer with the most frames in "
                 "that second")
            ->excludes(layer);
    const auto layers = app.add_flag("--layers", options.layers,
                                     "list the layers that have frames instead of replaying");
    app.add_option("--refresh-rate", options.timeline.refreshRateHz,
                   "display refresh rate in Hz, instead of the trace's own")
            ->type_name("HZ")
            ->check(CLI::Range(1.0, 1000.0));
    app.add_option_function<std::string>(
               "--boost-depth",
               [&options](const std::string& word) {
                   const bool isFound = word == report::boostDepthWord(replay::BoostDepth::Found);
                   options.play.boostDepth =
                           isFound ? replay::BoostDepth::Found : replay::BoostDepth::Left;
               },
               "queued frames that decide on a boost when a composition ends: those left in the "
               "queue (default), or the maximum found since the previous composition")
            ->type_name("left|found")
            ->check(CLI::IsMember({report::boostDepthWord(replay::BoostDepth::Left),
                                   report::boostDepthWord(replay::BoostDepth::Found)})
                            .description(""));
    app.add_option("--from", options.window.fromS,
                   "report only from this time on, in seconds since the first event; the library "
                   "sees the whole trace")
            ->type_name("S");
    app.add_option("--to", options.window.toS, "report only up to this time, in seconds")
            ->type_name("S");
    app.add_option("--hints", options.hints, "write the hints that were sent, as CSV")
            ->type_name("FILE");
    app.add_option("--trace-out", options.traceOut,
                   "write the trace with the library's marks and hints added")
            ->type_name("FILE");
    app.add_option("--plot", options.plot, "draw the replay (needs gnuplot)")
            ->type_name("FILE.svg|.png");
    app.add_flag("--json", options.json, "print the summary as one JSON object");
    for (const char* output :
         {"--vs", "--from", "--to", "--hints", "--trace-out", "--plot", "--json"})
        layers->excludes(app.get_option(output));
    const auto verify =
            app.add_flag("--verify", options.verify,
                         "compare the decisions that the library made on the device, which its "
                         "marks in the trace show, with those of the replay");
    for (const char* other : {"--layers", "--vs", "--from", "--to", "--hints"})
        verify->excludes(app.get_option(other));
    app.add_option("--tolerance", options.tolerancePercent,
                   "for --verify: share of the decisions after the first two measuring windows "
                   "that may differ")
            ->type_name("PERCENT")
            ->check(CLI::Range(0.0, 100.0))
            ->capture_default_str()
            ->needs(verify);
    app.set_version_flag("--version", BREVOLD_VERSION);
}

void checkOptions(const Options& options) {
    if (!options.plot.empty()) plot::plotTerminal(options.plot);
    replay::checkWindow(options.window);
    std::vector<NamedFile> outputs;
    for (const NamedFile& output :
         {NamedFile{"--hints", options.hints}, NamedFile{"--trace-out", options.traceOut},
          NamedFile{"--plot", options.plot}}) {
        if (!output.path.empty()) outputs.push_back(output);
    }
    if (options.traces.size() > 1 && options.verify) {
        throw std::runtime_error("--verify takes one trace");
    }
    if (options.traces.size() > 1 && !outputs.empty()) {
        throw std::runtime_error(outputs.front().option + " takes one trace");
    }
    requireSeparateFiles(options.traces, outputs);
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

}  // namespace brevold
