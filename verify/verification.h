#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "replay/play_options.h"
#include "replay/recording.h"
#include "trace/library_sections.h"
#include "trace/timeline.h"
#include "trace/trace_form.h"
#include "verify/boosts.h"
#include "verify/differences.h"
#include "verify/library_marks.h"
#include "verify/workers.h"

namespace brevold::verify {

enum class Verdict : uint8_t {
    AsExpected,
    Differs,       // more than the tolerance
    TooShort,      // decisions or boosts differ, and none count for the verdict
    NoDecisions,   // neither the recording nor the replay has one
    OtherProfile,  // the recording has decisions, but the profile allows none
    Unreadable,    // the share of labels that cannot be read exceeds the tolerance
    NoMarks,       // the trace has no marks of the library
};

/** Returns true if the verdict follows from a comparison of decisions. */
constexpr bool isCompared(Verdict verdict) {
    return verdict == Verdict::AsExpected || verdict == Verdict::Differs ||
           verdict == Verdict::TooShort;
}

/** The part of a profile without which the library makes no decision. */
enum class ProfileGap : uint8_t {
    None,
    EnergyScaling,  // it is not allowed or not on
    TargetApp,      // the application in focus is not a target
};

/** The comparison of a recording with its replay. Times are the trace's own. */
struct Verification {
    std::string trace;
    std::string layer;  // in focus at the start
    int64_t startNs;
    int64_t endNs;
    double tolerancePercent;
    LibraryMarks marks;  // those in the trace
    std::vector<trace::TraceWarning> warnings;
    Verdict verdict = Verdict::NoMarks;
    /** Set if the verdict is OtherProfile. */
    ProfileGap profileGap = ProfileGap::None;
    // The rest is empty if the marks are missing or unreadable, or if the profile allows no
    // decisions.
    Differences differences;
    /** For the boost depth of the replay and, if boosts differ, for the other one. */
    std::vector<BoostFit> boostFits;
    Latencies latencies;
    /** The refresh period that holds longest. */
    int64_t periodNs = 0;
    replay::Recording replay;
};

/** A recording of a device that runs the library. */
struct DeviceTrace {
    std::string name;
    trace::Timeline timeline;
    trace::TraceForm form;
    trace::LibrarySections sections;
};

/** Plays the timeline of a trace, with the library's debug output on or off. */
using Play = std::function<replay::Recording(replay::BoostDepth, bool debug)>;

/**
 * Compares a recording with its replay. Takes the sections of `device`. Calls `play` once, and
 * again with the other boost depth if boosts differ, but not without marks of the library.
 */
Verification verify(DeviceTrace& device, replay::BoostDepth boostDepth, double tolerancePercent,
                    const Play& play);

}  // namespace brevold::verify
