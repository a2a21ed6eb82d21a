#include "report/labels.h"

#include <fmt/format.h>

#include "base/text.h"

namespace brevold::report {

namespace {

struct Label {
    const char* text;
    const char* word;  // in JSON
};

Label labelOf(trace::PeriodSource source) {
    switch (source) {
        case trace::PeriodSource::Option:
            return {"--refresh-rate", "option"};
        case trace::PeriodSource::SetPeriod:
            return {"VSR-setPeriod", "set-period"};
        case trace::PeriodSource::DisplayMode:
            return {"values", "display-mode"};
        case trace::PeriodSource::PredictedPeriod:
            return {"values", "predicted-period"};
        case trace::PeriodSource::VsyncToggles:
            return {"toggles", "vsync-toggles"};
        case trace::PeriodSource::FrameIntervals:
            return {"frame intervals, as no counter shows the display's vsyncs", "frame-intervals"};
        case trace::PeriodSource::Default:
            return {"the default, as neither a counter nor steady frames show the rate", "default"};
        case trace::PeriodSource::LatencyDump:
            return {"the dump's first line", "latency-dump"};
    }
    return {"", ""};
}

Label labelOf(trace::CompositionSource source) {
    switch (source) {
        case trace::CompositionSource::OnMessageRefresh:
            return {"onMessageRefresh sections", "onMessageRefresh"};
        case trace::CompositionSource::HandleMessageRefresh:
            return {"handleMessageRefresh sections", "handleMessageRefresh"};
        case trace::CompositionSource::Composite:
            return {"composite sections", "composite"};
        case trace::CompositionSource::PostFramebuffer:
            return {"postFramebuffer sections", "postFramebuffer"};
        case trace::CompositionSource::Commit:
            return {"commit sections", "commit"};
        case trace::CompositionSource::Latches:
            return {"latches", "latches"};
        case trace::CompositionSource::PresentTimes:
            return {"present times minus a refresh period", "present-times"};
    }
    return {"", ""};
}

Label labelOf(trace::VsyncSource source) {
    switch (source) {
        case trace::VsyncSource::None:
            return {"none in the trace", "none"};
        case trace::VsyncSource::VsyncSf:
            return {"VSYNC-sf", "VSYNC-sf"};
        case trace::VsyncSource::Vsync:
            return {"VSYNC", "VSYNC"};
        case trace::VsyncSource::PresentTimes:
            return {"present times", "present-times"};
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

Label labelOf(trace::TraceWarning::Kind kind) {
    using Kind = trace::TraceWarning::Kind;
    switch (kind) {
        case Kind::StrayLine:
            return {"lines that are not trace events", "stray-line"};
        case Kind::OutOfOrderLine:
            return {"lines skipped because they go back in time", "out-of-order-line"};
        case Kind::UnfinishedLine:
            return {"lines skipped because the text ends inside them", "unfinished-line"};
        case Kind::StrayRow:
            return {"lines that are not rows of a latency dump", "stray-row"};
        case Kind::OutOfOrderRow:
            return {"rows skipped because they go back in time", "out-of-order-row"};
        case Kind::IncompletePacket:
            return {"the last packet is incomplete", "incomplete-packet"};
        case Kind::DamagedPacket:
            return {"damaged packets", "damaged-packet"};
        case Kind::LossyBundle:
            return {"ftrace bundles before which events were lost", "lossy-bundle"};
        case Kind::LossyProcessor:
            return {"processors whose ftrace buffer lost events", "lossy-processor"};
        case Kind::UnknownClock:
            return {"ftrace bundles in a clock that is not related to boot time", "unknown-clock"};
        case Kind::OutOfOrderEvent:
            return {"events skipped because they go back in time", "out-of-order-event"};
        case Kind::BadCounterValue:
            return {"counters skipped because their value is not a number", "bad-counter-value"};
        case Kind::RingOverrun:
            return {"the recorder's buffer was full and lost its oldest events", "ring-overrun"};
        case Kind::OtherCompositor:
            return {"another process has marks of a compositor too", "other-compositor"};
        case Kind::NegativeDepth:
            return {"queue depths below 0, taken as 0", "negative-depth"};
        case Kind::DepthJump:
            return {"queue depths that change by more than one", "depth-jump"};
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

const char* warningWord(trace::TraceWarning::Kind kind) {
    return labelOf(kind).word;
}

}  // namespace brevold::report
