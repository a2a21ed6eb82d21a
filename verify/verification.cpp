#include "verify/verification.h"

#include <algorithm>
#include <map>

#include "verify/cause_finder.h"
#include "verify/expected_frames.h"
#include "verify/mode_evidence.h"
#include "verify/pairing.h"

namespace brevold::verify {

namespace {

constexpr size_t kEarlyWindows = 2;

/** Returns the refresh period that holds for the longest time. */
int64_t mainPeriodNs(const trace::Timeline& timeline) {
    std::map<int64_t, int64_t> heldNs;
    int64_t periodNs = timeline.events.front().periodNs;
    int64_t sinceNs = timeline.startNs;
    for (const trace::TimelineEvent& event : timeline.events) {
        if (event.kind != trace::TimelineEvent::Kind::Period) continue;
        heldNs[periodNs] += event.timeNs - sinceNs;
        periodNs = event.periodNs;
        sinceNs = event.timeNs;
    }
    heldNs[periodNs] += timeline.endNs - sinceNs;
    return std::max_element(heldNs.begin(), heldNs.end(),
                            [](const auto& a, const auto& b) { return a.second < b.second; })
            ->first;
}

std::vector<int64_t> beginningsNs(const std::vector<ServiceSection>& sections) {
    std::vector<int64_t> timesNs;
    for (const ServiceSection& section : sections)
        timesNs.push_back(section.beginNs);
    return timesNs;
}

bool sendsDown(const replay::Recording& recording) {
    return std::any_of(recording.hints.begin(), recording.hints.end(),
                       [](const host::Hint& hint) { return hint.kind == host::HintKind::Down; });
}

replay::BoostDepth otherThan(replay::BoostDepth depth) {
    using replay::BoostDepth;
    return depth == BoostDepth::Left ? BoostDepth::Found : BoostDepth::Left;
}

void compareDecisions(const std::vector<ExpectedFrame>& frames, const Pairing& pairing,
                      const CauseFinder& causes, Differences* differences) {
    for (size_t i = 0; i < frames.size(); ++i) {
        const auto& [recorded, replayed, isUnreadable] = pairing.frames[i];
        if (recorded == nullptr && (replayed == nullptr || isUnreadable)) continue;
        if (recorded != nullptr && replayed != nullptr && followsRule(recorded->label) &&
            agree(recorded->label, replayed->label)) {
            differences->addAgreement(Subject::Decision, frames[i].timeNs);
        } else {
            differences->add(Subject::Decision, frames[i].timeNs, causes.ofFrame(i));
        }
    }
    for (const ExtraDecision& extra : pairing.extras)
        differences->add(Subject::Decision, extra.mark->timeNs, causes.ofExtra(extra));
    differences->narrowCauses();
    differences->sort();
}

Verdict verdictOf(const Differences& differences, double tolerancePercent) {
    const Tally& decisions = differences.of(Subject::Decision);
    if (decisions.count == 0) return Verdict::NoDecisions;
    for (size_t i = 0; i < kSubjectCount; ++i) {
        const Tally& tally = differences.of(static_cast<Subject>(i));
        if (!tally.isWithin(tolerancePercent)) return Verdict::Differs;
    }
    const bool isTooShort = decisions.lateCount == 0 && decisions.differing > 0;
    return isTooShort ? Verdict::TooShort : Verdict::AsExpected;
}

}  // namespace

Verification verify(DeviceTrace& device, replay::BoostDepth boostDepth, double tolerancePercent,
                    const Play& play) {
    const trace::Timeline& timeline = device.timeline;
    Verification result = {device.name,
                           timeline.layers[timeline.focusedLayer].name,
                           timeline.startNs,
                           timeline.endNs,
                           tolerancePercent,
                           recordedMarks(device.sections, device.form),
                           timeline.warnings,
                           Verdict::NoMarks,
                           Differences(timeline.endNs),
                           {},
                           {},
                           0,
                           {}};
    const LibraryMarks& recorded = result.marks;
    if (recorded.isEmpty()) return result;

    result.replay = play({boostDepth, true});
    const replay::Recording& recording = result.replay;
    const LibraryMarks replayed = replayedMarks(recording);
    const Expectation expected = expect(timeline, recording.modes);
    const ModeEvidence modes(recorded, recording.modes, expected.compositionsNs);
    const Boosts boosts(beginningsNs(recorded.boosts), expected.compositionsNs);
    const BoostReplay boostReplay =
            fitBoosts(boosts, recording, boostDepth, expected.compositionsNs);
    const std::vector<int64_t> commonNs =
            commonBoostsNs(boosts, boostReplay.boosts, expected.compositionsNs);
    const Pairing pairing = pairDecisions(expected.frames, recorded, replayed);
    const CauseFinder causes(expected.frames, pairing, modes, commonNs);

    if (replayed.windows.size() >= kEarlyWindows) {
        result.differences = Differences(replayed.windows[kEarlyWindows - 1].timeNs);
    }
    compareDecisions(expected.frames, pairing, causes, &result.differences);

    result.boostFits.push_back(boostReplay.fit);
    std::optional<BoostReplay> otherReplay;
    if (boostReplay.fit.agreeing != boostReplay.fit.compositions) {
        const replay::PlayOptions other = {otherThan(boostDepth), false};
        otherReplay = fitBoosts(boosts, play(other), other.boostDepth, expected.compositionsNs);
        result.boostFits.push_back(otherReplay->fit);
    }
    compareBoosts(boosts, boostReplay, otherReplay ? &*otherReplay : nullptr,
                  expected.compositionsNs, modes, &result.differences);

    result.periodNs = mainPeriodNs(timeline);
    result.latencies = checkWorkers(
            recorded,
            {expected.compositionsNs, result.periodNs, timeline.endNs, sendsDown(recording)},
            &result.differences);
    result.differences.sort();
    result.verdict = verdictOf(result.differences, tolerancePercent);
    return result;
}

}  // namespace brevold::verify
