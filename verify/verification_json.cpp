#include "verify/verification_json.h"

#include <nlohmann/json.hpp>

#include "base/time_units.h"
#include "brevold/headroom.h"
#include "report/labels.h"
#include "report/warning_json.h"
#include "verify/cause_table.h"
#include "verify/words.h"

namespace brevold::verify {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormatVersion = 1;

Json marksOf(const LibraryMarks& marks) {
    const MarkCounts& ignored = marks.ignored;
    return {{"decisions", marks.decisions.size()},   {"windows", marks.windows.size()},
            {"requests", marks.requests.size()},     {"boosts", marks.boosts.size()},
            {"releases", marks.releases.size()},     {"cut", ignored.cut},
            {"out_of_range", ignored.outOfRange},    {"unknown", ignored.unknown},
            {"other_process", ignored.otherProcess}, {"without_begin", ignored.withoutBegin},
            {"without_end", ignored.withoutEnd}};
}

Json causesOf(const CauseSet& causes) {
    Json words = Json::array();
    causes.forEach([&](Cause cause) { words.push_back(wordOf(cause)); });
    return words;
}

Json objectOf(const LatencySummary& latency, const Verification& verification) {
    Json object = {{"count", latency.count}};
    if (latency.count == 0) return object;
    object["median_ms"] = toMs(latency.medianNs);
    object["percentile_95_ms"] = toMs(latency.percentile95Ns);
    object["percentile_99_ms"] = toMs(latency.percentile99Ns);
    object["max_ms"] = toMs(latency.maxNs);
    object["max_at_s"] = toSeconds(latency.maxAtNs - verification.startNs);
    object["max_at_trace_s"] = toSeconds(latency.maxAtNs);
    return object;
}

Json objectOf(const Verification& verification) {
    const auto seconds = [&](int64_t timeNs) { return toSeconds(timeNs - verification.startNs); };
    Json object;
    object["trace"] = verification.trace;
    object["duration_s"] = seconds(verification.endNs);
    object["layer"] = verification.layer;
    object["verdict"] = wordOf(verification.verdict);
    object["tolerance_percent"] = verification.tolerancePercent;
    object["marks"] = marksOf(verification.marks);
    object["warnings"] = Json::array();
    for (const trace::TraceWarning& warning : verification.warnings)
        object["warnings"].push_back(report::warningOf(warning));
    if (verification.profileGap != ProfileGap::None) {
        object["profile_lacks"] = wordOf(verification.profileGap);
    }
    if (!isCompared(verification.verdict)) return object;

    object["not_verified"] =
            Json::array({"refresh_rate_hints", "application_queries", "boost_verdicts"});
    const int64_t earlyUntilNs = verification.differences.earlyUntilNs();
    object["first_two_windows_until_s"] = seconds(earlyUntilNs);
    object["first_two_windows_until_trace_s"] = toSeconds(earlyUntilNs);
    for (size_t i = 0; i < kSubjectCount; ++i) {
        const auto subject = static_cast<Subject>(i);
        const Tally& tally = verification.differences.of(subject);
        object["checked"][wordOf(subject)] = {{"count", tally.count},
                                              {"differing", tally.differing},
                                              {"verdict_count", tally.verdictCount},
                                              {"verdict_differing", tally.verdictDiffering}};
    }
    for (const BoostFit& fit : verification.boostFits) {
        object["boost_depths"][report::boostDepthWord(fit.depth)] = {
                {"compositions", fit.compositions}, {"agreeing", fit.agreeing}};
    }
    object["causes"] = Json::array();
    for (const CauseRow& row : causeTable(verification.differences.list())) {
        Json times = Json::array();
        Json traceTimes = Json::array();
        for (const int64_t timeNs : row.firstTimesNs) {
            times.push_back(seconds(timeNs));
            traceTimes.push_back(toSeconds(timeNs));
        }
        object["causes"].push_back({{"checked", wordOf(row.subject)},
                                    {"causes", causesOf(row.causes)},
                                    {"count", row.count},
                                    {"early_count", row.earlyCount},
                                    {"first_at_s", times},
                                    {"first_at_trace_s", traceTimes}});
    }
    object["frame_budget_ms"] = toMs(android::frameBudgetOf(verification.periodNs));
    for (size_t i = 0; i < kLatencyKindCount; ++i) {
        object["latencies"][wordOf(static_cast<LatencyKind>(i))] =
                objectOf(verification.latencies[i], verification);
    }
    return object;
}

}  // namespace

void printJson(const Verification& verification, std::ostream& out) {
    const Json object = {{"version", kFormatVersion}, {"verification", objectOf(verification)}};
    // Bytes of names that are not UTF-8 are replaced.
    out << object.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace brevold::verify
