#include "verify/words.h"

namespace brevold::verify {

namespace {

struct Words {
    const char* text;  // for readers
    const char* word;  // for programs
};

Words wordsOf(Cause cause) {
    switch (cause) {
        case Cause::OtherVersion:
            return {"the library decides differently from the same figures: another version",
                    "other_version"};
        case Cause::OtherLayer:
            return {"another layer has the focus, or the application is not a target",
                    "other_layer"};
        case Cause::OtherPeer:
            return {"peerLayerName is not the name of the layer", "other_peer"};
        case Cause::NotReported:
            return {"a frame is not reported", "not_reported"};
        case Cause::ReportedTwice:
            return {"a frame is reported twice", "reported_twice"};
        case Cause::DepthPlusOne:
            return {"the queue depth is one too high", "depth_plus_one"};
        case Cause::DepthMinusOne:
            return {"the queue depth is one too low", "depth_minus_one"};
        case Cause::DepthBeforeLatch:
            return {"the queue depth is counted before the latest latch", "depth_before_latch"};
        case Cause::DepthAfterLatch:
            return {"the queue depth is counted after the next latch", "depth_after_latch"};
        case Cause::DepthOther:
            return {"the queue depth is counted in another way", "depth_other"};
        case Cause::StampVsync:
            return {"the stamp is that of the vsync", "stamp_vsync"};
        case Cause::StampPrevious:
            return {"the stamp is that of the composition before the latest", "stamp_previous"};
        case Cause::StampZero:
            return {"the stamp is 0", "stamp_zero"};
        case Cause::StampOther:
            return {"the stamp is not that of the latest composition", "stamp_other"};
        case Cause::PeriodInNoBand:
            return {"the refresh period matches none of the rates 60, 90 and 120 Hz",
                    "period_in_no_band"};
        case Cause::PeriodOfOtherDisplay:
            return {"the refresh period is that of another display", "period_of_other_display"};
        case Cause::WindowStart:
            return {"the measuring windows begin at other times, as is normal in the first seconds",
                    "window_start"};
        case Cause::TickRate:
            return {"brevoldRefresh is not called once per composition", "tick_rate"};
        case Cause::BoostDepthLeft:
            return {"brevoldScaling gets the frames that are queued at the call (left)",
                    "boost_depth_left"};
        case Cause::BoostDepthFound:
            return {"brevoldScaling gets the maximum since the previous call (found)",
                    "boost_depth_found"};
        case Cause::BoostDepthOther:
            return {"brevoldScaling gets a depth that is neither left nor found",
                    "boost_depth_other"};
        case Cause::DownOff:
            return {"vendor.perf.pfar.down.enable is 1 in the profile, but not on the device",
                    "down_off"};
        case Cause::DownOn:
            return {"vendor.perf.pfar.down.enable is 1 on the device, but not in the profile",
                    "down_on"};
        case Cause::RequestLate:
            return {"the worker sends the request more than a refresh period after the decision",
                    "request_late"};
        case Cause::RequestNotSent:
            return {"the worker does not send the request", "request_not_sent"};
        case Cause::RequestUndecided:
            return {"the worker sends a request without a decision in the trace",
                    "request_undecided"};
        case Cause::BoostLate:
            return {"the worker sends the boost after a later composition", "boost_late"};
        case Cause::BoostNotSent:
            return {"the worker does not send the boost", "boost_not_sent"};
        case Cause::BoostNotReleased:
            return {"the boost is not released", "boost_not_released"};
        case Cause::QueueTimes:
            return {"the queue times are not those of the trace", "queue_times"};
        case Cause::Unexplained:
            return {"unexplained", "unexplained"};
    }
    return {"", ""};
}

Words wordsOf(ProfileGap gap) {
    switch (gap) {
        case ProfileGap::None:
            break;
        case ProfileGap::EnergyScaling:
            return {"energy scaling is off; it needs feature.5=1 and vendor.perf.pfar.enable=1",
                    "energy_scaling"};
        case ProfileGap::TargetApp:
            return {"the application is not a target; it needs app-type.PACKAGE=2 or app-type.*=2",
                    "target_app"};
    }
    return {"", ""};
}

Words wordsOf(LatencyKind kind) {
    switch (kind) {
        case LatencyKind::HandOver:
            return {"from decision to worker", "hand_over"};
        case LatencyKind::RequestCall:
            return {"service call, DOWN or UP", "request_call"};
        case LatencyKind::BoostCall:
            return {"service call, boost", "boost_call"};
        case LatencyKind::ReleaseCall:
            return {"service call, release", "release_call"};
        case LatencyKind::BoostHold:
            return {"from boost to release", "boost_hold"};
        case LatencyKind::ReporterWait:
            return {"wait of the reporting thread", "reporter_wait"};
    }
    return {"", ""};
}

}  // namespace

const char* textOf(Cause cause) {
    return wordsOf(cause).text;
}

std::string describe(const Difference& difference) {
    return wordOf(difference.subject) + std::string(": ") + textOf(difference.causes, " or ");
}

std::string textOf(const CauseSet& causes, const std::string& separator) {
    std::string text;
    causes.forEach([&](Cause cause) {
        if (!text.empty()) text += separator;
        text += textOf(cause);
    });
    return text;
}

const char* textOf(LatencyKind kind) {
    return wordsOf(kind).text;
}

const char* textOf(ProfileGap gap) {
    return wordsOf(gap).text;
}

const char* wordOf(Cause cause) {
    return wordsOf(cause).word;
}

const char* wordOf(Subject subject) {
    switch (subject) {
        case Subject::Decision:
            return "decisions";
        case Subject::Boost:
            return "boosts";
        case Subject::Request:
            return "requests";
        case Subject::Release:
            return "releases";
    }
    return "";
}

const char* wordOf(LatencyKind kind) {
    return wordsOf(kind).word;
}

const char* wordOf(ProfileGap gap) {
    return wordsOf(gap).word;
}

const char* wordOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::AsExpected:
            return "as_expected";
        case Verdict::Differs:
            return "differs";
        case Verdict::TooShort:
            return "too_short";
        case Verdict::OtherProfile:
            return "other_profile";
        case Verdict::NoDecisions:
            return "no_decisions";
        case Verdict::Unreadable:
            return "unreadable";
        case Verdict::NoMarks:
            return "no_marks";
    }
    return "";
}

}  // namespace brevold::verify
