#include "verify/verification.h"

#include <algorithm>
#include <map>

#include "replay/window_line.h"
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

bool hasOutcome(const replay::Recording& recording, replay::FrameOutcome outcome) {
    return std::any_of(recording.frames.begin(), recording.frames.end(),
                       [&](const replay::DecidedFrame& frame) { return frame.outcome == outcome; });
}

ProfileGap gapOf(const replay::Recording& recording) {
    using replay::FrameOutcome;
    if (hasOutcome(recording, FrameOutcome::ScalingOff)) return ProfileGap::EnergyScaling;
    const bool isTarget = std::any_of(recording.frames.begin(), recording.frames.end(),
                                      [](const replay::DecidedFrame& frame) {
                                          return frame.outcome != FrameOutcome::FirstFrame &&
                                                 frame.outcome != FrameOutcome::NoTargetApp;
                                      });
    const bool isGap = !isTarget && hasOutcome(recording, FrameOutcome::NoTargetApp);
    return isGap ? ProfileGap::TargetApp : ProfileGap::None;
}

/** Returns the end of the replay's second measuring window, or of the trace. */
int64_t earlyEndNs(const replay::Recording& recording, int64_t endNs) {
    size_t windows = 0;
    for (const host::LogLine& line : recording.log) {
        if (!replay::modeOfWindowLine(line.text)) continue;
        if (++windows == kEarlyWindows) return line.timeNs;
    }
    return endNs;
}

replay::BoostDepth otherThan(replay::BoostDepth depth) {
    using replay::BoostDepth;
    return depth == BoostDepth::Left ? BoostDepth::Found : BoostDepth::Left;
}

void compareDecisions(const Expectation& expected, const Pairing& pairing,
                      const CauseFinder& causes, Differences* differences) {
    const std::vector<ExpectedFrame>& frames = expected.frames;
    for (size_t i = 0; i < frames.size(); ++i) {
        const std::optional<DecisionLabel>& decision = frames[i].decision;
        const auto& [recorded, isUnreadable] = pairing.frames[i];
        if (frames[i].timeNs < expected.periodKnownFromNs) continue;
        if (recorded == nullptr && (!decision || isUnreadable)) continue;
        if (recorded != nullptr && decision && followsRule(recorded->label) &&
            agree(recorded->label, *decision)) {
            differences->addAgreement(Subject::Decision, frames[i].timeNs);
        } else {
            differences->add(Subject::Decision, frames[i].timeNs, causes.ofFrame(i));
        }
    }
    for (const ExtraDecision& extra : pairing.extras) {
        const int64_t timeNs = extra.mark->timeNs;
        if (timeNs < expected.periodKnownFromNs) continue;
        differences->add(Subject::Decision, timeNs, causes.ofExtra(extra));
    }
    differences->narrowCauses();
    differences->sort();
}

/** An unreadable label may be that of a decision. */
bool areReadable(const LibraryMarks& marks, double tolerancePercent) {
    if (marks.unreadable.empty()) return true;
    const auto unreadable = static_cast<double>(marks.unreadable.size());
    const auto decisions = static_cast<double>(marks.decisions.size());
    return decisions > 0 && unreadable * 100.0 <= (decisions + unreadable) * tolerancePercent;
}

Verdict verdictOf(const Differences& differences, double tolerancePercent) {
    bool isTooShort = false;
    for (size_t i = 0; i < kSubjectCount; ++i) {
        const Tally& tally = differences.of(static_cast<Subject>(i));
        if (!tally.isWithin(tolerancePercent)) return Verdict::Differs;
        isTooShort |= tally.isTooShort();
    }
    if (differences.of(Subject::Decision).count == 0) return Verdict::NoDecisions;
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
                           ProfileGap::None,
                           Differences(timeline.endNs),
                           {},
                           {},
                           0,
                           {}};
    const LibraryMarks& recorded = result.marks;
    if (recorded.isEmpty()) return result;
    if (!areReadable(recorded, tolerancePercent)) {
        result.verdict = Verdict::Unreadable;
        return result;
    }

    result.replay = play(boostDepth, true);
    const replay::Recording& recording = result.replay;
    result.profileGap = recorded.decisions.empty() ? ProfileGap::None : gapOf(recording);
    if (result.profileGap != ProfileGap::None) {
        result.verdict = Verdict::OtherProfile;
        return result;
    }
    Expectation expected = expect(timeline, recording);
    const ModeEvidence modes(recorded, recording.modes, expected);
    expectDecisions(modes, &expected.frames);
    const Boosts boosts(beginningsNs(recorded.boosts), expected, modes);
    const BoostReplay boostReplay = fitBoosts(boosts, recording, boostDepth, expected, modes);
    const std::vector<int64_t> commonNs =
            commonBoostsNs(boosts, boostReplay.boosts, expected.compositionsNs);
    const Pairing pairing = pairDecisions(expected.frames, recorded);
    const CauseFinder causes(expected.frames, pairing, modes, commonNs);

    result.differences = Differences(earlyEndNs(recording, timeline.endNs));
    compareDecisions(expected, pairing, causes, &result.differences);

    result.boostFits.push_back(boostReplay.fit);
    std::optional<BoostReplay> otherReplay;
    if (boostReplay.fit.agreeing != boostReplay.fit.compositions) {
        const replay::BoostDepth other = otherThan(boostDepth);
        otherReplay = fitBoosts(boosts, play(other, false), other, expected, modes);
        result.boostFits.push_back(otherReplay->fit);
    }
    compareBoosts(boosts, boostReplay, otherReplay ? &*otherReplay : nullptr,
                  expected.compositionsNs, modes, &result.differences);

    result.periodNs = mainPeriodNs(timeline);
    result.latencies =
            checkWorkers(recorded,
                         {expected.compositionsNs, result.periodNs, timeline.startNs,
                          timeline.endNs, !hasOutcome(recording, replay::FrameOutcome::DownOff)},
                         &result.differences);
    result.differences.sort();
    result.verdict = verdictOf(result.differences, tolerancePercent);
    return result;
}

}  // namespace brevold::verify
