#include "report/labels.h"

#include <fmt/format.h>

#include "base/time_units.h"

namespace brevold::report {

namespace {

struct Label {
    const char* text;
    const char* word;  // in JSON and CSV
};

Label labelOf(trace::PeriodSource source) {
    switch (source) {
        case trace::PeriodSource::Option:
            return {"--refresh-rate", "option"};
        case trace::PeriodSource::SetPeriod:
            return {"VSR-setPeriod", "set_period"};
        case trace::PeriodSource::DisplayMode:
            return {"values", "display_mode"};
        case trace::PeriodSource::PredictedPeriod:
            return {"values", "predicted_period"};
        case trace::PeriodSource::VsyncToggles:
            return {"toggles", "vsync_toggles"};
        case trace::PeriodSource::FrameIntervals:
            return {"frame intervals, as no counter shows the display's vsyncs", "frame_intervals"};
        case trace::PeriodSource::Default:
            return {"the default, as neither a counter nor steady frames show the rate", "default"};
        case trace::PeriodSource::LatencyDump:
            return {"the dump's first line", "latency_dump"};
    }
    return {"", ""};
}

Label labelOf(trace::CompositionSource source) {
    switch (source) {
        case trace::CompositionSource::OnMessageRefresh:
            return {"onMessageRefresh sections", "on_message_refresh"};
        case trace::CompositionSource::HandleMessageRefresh:
            return {"handleMessageRefresh sections", "handle_message_refresh"};
        case trace::CompositionSource::Composite:
            return {"composite sections", "composite"};
        case trace::CompositionSource::PostFramebuffer:
            return {"postFramebuffer sections", "post_framebuffer"};
        case trace::CompositionSource::Commit:
            return {"commit sections", "commit"};
        case trace::CompositionSource::Latches:
            return {"latches", "latches"};
        case trace::CompositionSource::PresentTimes:
            return {"present times minus a refresh period", "present_times"};
    }
    return {"", ""};
}

Label labelOf(trace::VsyncSource source) {
    switch (source) {
        case trace::VsyncSource::None:
            return {"none in the trace", "none"};
        case trace::VsyncSource::VsyncSf:
            return {"VSYNC-sf", "vsync_sf"};
        case trace::VsyncSource::Vsync:
            return {"VSYNC", "vsync"};
        case trace::VsyncSource::PresentTimes:
            return {"present times", "present_times"};
    }
    return {"", ""};
}

Label labelOf(replay::BoostDepth depth) {
    switch (depth) {
        case replay::BoostDepth::Left:
            return {"frames queued when a composition ends", "left"};
        case replay::BoostDepth::Found:
            return {"maximum since the previous composition", "found"};
    }
    return {"", ""};
}

Label labelOf(replay::FrameOutcome outcome) {
    using Outcome = replay::FrameOutcome;
    switch (outcome) {
        case Outcome::AskedDown:
            return {"DOWN requested", "asked_down"};
        case Outcome::AskedUp:
            return {"UP requested", "asked_up"};
        case Outcome::ScalingOff:
            return {"energy scaling is off", "scaling_off"};
        case Outcome::FirstFrame:
            return {"first frame of the layer", "first_frame"};
        case Outcome::NoTargetApp:
            return {"application is not a target", "no_target_app"};
        case Outcome::PeerDiffers:
            return {"peer layer differs", "peer_differs"};
        case Outcome::NoStamp:
            return {"no composition before the previous frame", "no_stamp"};
        case Outcome::EmptyQueue:
            return {"no frame is queued", "empty_queue"};
        case Outcome::UnsupportedPeriod:
            return {"refresh period in no band of 60, 90, 120 Hz", "unsupported_period"};
        case Outcome::UnknownMode:
            return {"frame-rate mode unknown (debug output is off)", "unknown_mode"};
        case Outcome::UnclassifiedMode:
            return {"frame-rate mode is unclassified", "unclassified_mode"};
        case Outcome::OtherMode:
            return {"frame-rate mode does not match the display", "other_mode"};
        case Outcome::DownOff:
            return {"DOWN requests are off", "down_off"};
        case Outcome::ScaleNotAboveOne:
            return {"one frame queued, scale not above 1", "scale_not_above_one"};
    }
    return {"", ""};
}

Label labelOf(trace::TraceWarning::Kind kind) {
    using Kind = trace::TraceWarning::Kind;
    switch (kind) {
        case Kind::StrayLine:
            return {"lines that are not trace events", "stray_line"};
        case Kind::OutOfOrderLine:
            return {"lines skipped because they go back in time", "out_of_order_line"};
        case Kind::UnfinishedLine:
            return {"lines skipped because the text ends inside them", "unfinished_line"};
        case Kind::StrayRow:
            return {"lines that are not rows of a latency dump", "stray_row"};
        case Kind::OutOfOrderRow:
            return {"rows skipped because they go back in time", "out_of_order_row"};
        case Kind::IncompletePacket:
            return {"incomplete packets at the end", "incomplete_packet"};
        case Kind::DamagedPacket:
            return {"damaged packets", "damaged_packet"};
        case Kind::LossyBundle:
            return {"ftrace bundles before which events were lost", "lossy_bundle"};
        case Kind::LossyProcessor:
            return {"processors whose ftrace buffer lost events", "lossy_processor"};
        case Kind::UnknownClock:
            return {"ftrace bundles in a clock that is not related to boot time", "unknown_clock"};
        case Kind::OutOfOrderEvent:
            return {"events skipped because they go back in time", "out_of_order_event"};
        case Kind::BadCounterValue:
            return {"counters skipped because their value is not a number", "bad_counter_value"};
        case Kind::RingOverrun:
            return {"the recorder's buffer was full and lost its oldest events", "ring_overrun"};
        case Kind::OtherCompositor:
            return {"another process has marks of a compositor too", "other_compositor"};
        case Kind::NegativeDepth:
            return {"queue depths below 0, taken as 0", "negative_depth"};
        case Kind::DepthJump:
            return {"queue depths that change by more than one", "depth_jump"};
    }
    return {"", ""};
}

}  // namespace

std::string periodSourceText(trace::PeriodSource source, const std::string& counter) {
    return counter.empty() ? labelOf(source).text : counter + ' ' + labelOf(source).text;
}

const char* compositionSourceText(trace::CompositionSource source) {
    return labelOf(source).text;
}

const char* vsyncSourceText(trace::VsyncSource source) {
    return labelOf(source).text;
}

const char* boostDepthText(replay::BoostDepth depth) {
    return labelOf(depth).text;
}

std::string warningText(const trace::TraceWarning& warning) {
    using Kind = trace::TraceWarning::Kind;
    const std::string text = fmt::format("{}: {}", labelOf(warning.kind).text, warning.lines.lines);
    if (warning.kind == Kind::RingOverrun) {
        return fmt::format("{}; the trace is whole from {:.2f} s on", text,
                           toSeconds(warning.wholeFromNs));
    }
    if (warning.kind == Kind::OtherCompositor) {
        return fmt::format("{} of process {}; process {} was taken as the compositor", text,
                           warning.otherPid, warning.pid);
    }
    if (warning.lines.firstLine == 0) return text;
    return fmt::format("{}, the first in line {}", text, warning.lines.firstLine);
}

const char* outcomeText(replay::FrameOutcome outcome) {
    return labelOf(outcome).text;
}

const char* periodSourceWord(trace::PeriodSource source) {
    return labelOf(source).word;
}

const char* compositionSourceWord(trace::CompositionSource source) {
    return labelOf(source).word;
}

const char* vsyncSourceWord(trace::VsyncSource source) {
    return labelOf(source).word;
}

const char* boostDepthWord(replay::BoostDepth depth) {
    return labelOf(depth).word;
}

const char* outcomeWord(replay::FrameOutcome outcome) {
    return labelOf(outcome).word;
}

const char* hintWord(host::HintKind kind) {
    switch (kind) {
        case host::HintKind::JankBoost:
            return "jank_boost";
        case host::HintKind::RefreshRate:
            return "refresh_rate";
        default:
            return host::nameOf(kind);
    }
}

const char* warningWord(trace::TraceWarning::Kind kind) {
    return labelOf(kind).word;
}

}  // namespace brevold::report
