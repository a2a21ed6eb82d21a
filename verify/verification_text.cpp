#include "verify/verification_text.h"

#include <fmt/ostream.h>

#include "base/text.h"
#include "base/time_units.h"
#include "brevold/headroom.h"
#include "report/labels.h"
#include "verify/cause_table.h"
#include "verify/words.h"

namespace brevold::verify {

namespace {

/** "177 of 177 decisions agree", "1204 of 1210 decisions agree, the 6 others within …" */
std::string agreementText(const Tally& decisions) {
    std::string text = fmt::format("{} of {} decisions agree",
                                   decisions.count - decisions.differing, decisions.count);
    const int64_t early = decisions.differing - decisions.verdictDiffering;
    if (early == 0) return text;
    if (decisions.verdictDiffering != 0) {
        return text + fmt::format(", {} of the others are within the first two windows", early);
    }
    return text + (early == 1 ? ", the other is" : fmt::format(", the {} others are", early)) +
           " within the first two windows";
}

/** "36 of 177 decisions differ", "36 of 177 decisions and 64 of 256 boosts differ" */
std::string differenceText(const Verification& verification) {
    std::string text;
    for (size_t i = 0; i < kSubjectCount; ++i) {
        const auto subject = static_cast<Subject>(i);
        const Tally& tally = verification.differences.of(subject);
        if (tally.isWithin(verification.tolerancePercent)) continue;
        text += fmt::format("{}{} of {} {}", text.empty() ? "" : " and ", tally.differing,
                            tally.count, wordOf(subject));
    }
    return text + " differ";
}

/** "no decisions after the first two windows, and 38 of 38 before differ" */
std::string shortageText(const Verification& verification) {
    std::string text;
    for (const Subject subject : {Subject::Decision, Subject::Boost}) {
        const Tally& tally = verification.differences.of(subject);
        if (!tally.isTooShort()) continue;
        text += fmt::format("{}no {} after the first two windows, and {} of {} before differ",
                            text.empty() ? "" : "; ", wordOf(subject), tally.differing,
                            tally.count);
    }
    return text;
}

std::string verdictText(const Verification& verification) {
    switch (verification.verdict) {
        case Verdict::AsExpected:
            return "the integration is as expected: " +
                   agreementText(verification.differences.of(Subject::Decision));
        case Verdict::Differs:
            return "the integration is not as expected: " + differenceText(verification);
        case Verdict::TooShort:
            return "the recording is too short: " + shortageText(verification);
        case Verdict::NoDecisions:
            return "nothing to verify: the recording and the replay have no DOWN or UP decisions";
        case Verdict::OtherProfile:
            return fmt::format(
                    "nothing to verify: under this profile the library decides nothing, but the "
                    "device decided {} times: {}",
                    verification.marks.decisions.size(), textOf(verification.profileGap));
        case Verdict::Unreadable:
            return fmt::format(
                    "nothing to verify: too many labels of the library cannot be read ({}; "
                    "decisions that can be read: {}). The device has another version of the "
                    "library, or the trace is damaged",
                    verification.marks.unreadable.size(), verification.marks.decisions.size());
        case Verdict::NoMarks:
            return "nothing to verify: the trace has no marks of the library. Its debug output was "
                   "off, or was switched on without restarting the compositor (settings are read "
                   "once); or energy scaling was off; or no target application was in focus; or "
                   "ftrace/print was not recorded";
    }
    return "";
}

void printIgnored(const MarkCounts& ignored, std::ostream& out) {
    const auto line = [&out](int64_t count, const char* text) {
        if (count != 0) fmt::print(out, "warning       {}: {}\n", text, count);
    };
    line(ignored.cut, "marks of the library with an incomplete label");
    line(ignored.outOfRange, "marks of the library with a number that is out of range");
    line(ignored.unknown, "marks of the library with an unknown label");
    line(ignored.otherProcess, "marks of the library in processes other than the compositor");
    line(ignored.withoutBegin, "sections of the library's threads that began before the trace");
    line(ignored.withoutEnd, "sections of the library that the trace does not end");
}

void printTallies(const Verification& verification, std::ostream& out) {
    fmt::print(out, "\nchecked       count  differ   of those that count, tolerance {:.4g} %\n",
               verification.tolerancePercent);
    for (size_t i = 0; i < kSubjectCount; ++i) {
        const auto subject = static_cast<Subject>(i);
        const Tally& tally = verification.differences.of(subject);
        fmt::print(out, "  {:<10} {:6} {:7}   {} of {}, {:.1f} %\n", wordOf(subject), tally.count,
                   tally.differing, tally.verdictDiffering, tally.verdictCount,
                   percentOf(tally.verdictDiffering, tally.verdictCount));
    }
    if (verification.boostFits.size() < 2) return;
    for (const BoostFit& fit : verification.boostFits) {
        fmt::print(out, "  with --boost-depth {}, ", report::boostDepthWord(fit.depth));
        if (fit.compositions == 0) {
            out << "no boost is expected or recorded\n";
        } else {
            fmt::print(out, "{} of {} boosts agree\n", fit.agreeing, fit.compositions);
        }
    }
}

void printCauses(const Verification& verification, std::ostream& out) {
    const std::vector<CauseRow> rows = causeTable(verification.differences.list());
    if (rows.empty()) return;
    out << "\n differ  first at/s                  cause\n";
    for (const CauseRow& row : rows) {
        std::string times;
        for (const int64_t timeNs : row.firstTimesNs)
            times += fmt::format("{:<9.3f}", toSeconds(timeNs - verification.startNs));
        const std::string causes = textOf(row.causes, fmt::format("\n{:37}or ", ""));
        fmt::print(out, "{:7}  {:<27} {}: {}\n", row.count, times, wordOf(row.subject), causes);
    }
}

void printLatencies(const Verification& verification, std::ostream& out) {
    out << "\nlatency/ms                      count  median    95 %    99 %     max     at/s   "
           "max of the frame budget\n";
    for (size_t i = 0; i < kLatencyKindCount; ++i) {
        const LatencySummary& latency = verification.latencies[i];
        fmt::print(out, "  {:<28} {:6}", textOf(static_cast<LatencyKind>(i)), latency.count);
        if (latency.count != 0) {
            fmt::print(out, " {:7.3f} {:7.3f} {:7.3f} {:7.3f} {:8.3f}   {:.1f} %",
                       toMs(latency.medianNs), toMs(latency.percentile95Ns),
                       toMs(latency.percentile99Ns), toMs(latency.maxNs),
                       toSeconds(latency.maxAtNs - verification.startNs),
                       percentOf(latency.maxNs, android::frameBudgetOf(verification.periodNs)));
        }
        out << '\n';
    }
}

}  // namespace

void print(const Verification& verification, std::ostream& out) {
    const LibraryMarks& marks = verification.marks;
    fmt::print(out, "trace         {}, {:.2f} s\n", verification.trace,
               toSeconds(verification.endNs - verification.startNs));
    fmt::print(out, "layer         {}\n", verification.layer);
    fmt::print(out, "marks         {} decisions, {} windows, {} requests, {} boosts, {} releases\n",
               marks.decisions.size(), marks.windows.size(), marks.requests.size(),
               marks.boosts.size(), marks.releases.size());
    for (const trace::TraceWarning& warning : verification.warnings)
        fmt::print(out, "warning       {}\n", report::warningText(warning));
    printIgnored(marks.ignored, out);
    fmt::print(out, "verdict       {}\n", verdictText(verification));
    if (!isCompared(verification.verdict)) return;
    printTallies(verification, out);
    printCauses(verification, out);
    printLatencies(verification, out);
    out << "\nnot verified: refresh-rate hints, application queries and boost verdicts leave no "
           "marks\n";
}

}  // namespace brevold::verify
