#include "replay/labels.h"

#include <fmt/format.h>

namespace brevold::replay {

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
        case trace::PeriodSource::VsyncToggles:
            return {"toggles", "vsync-toggles"};
        case trace::PeriodSource::FrameIntervals:
            return {"frame intervals, as the trace has no vsyncs", "frame-intervals"};
        case trace::PeriodSource::Default:
            return {"the default, as the trace has neither vsyncs nor steady frames", "default"};
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

Label labelOf(trace::TraceWarning::Kind kind) {
    using Kind = trace::TraceWarning::Kind;
    switch (kind) {
        case Kind::StrayLine:
            return {"lines that are not trace events", "stray-line"};
        case Kind::OutOfOrderLine:
            return {"lines skipped because they go back in time", "out-of-order-line"};
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

std::string warningText(const trace::TraceWarning& warning) {
    std::string text = fmt::format("{}: {}", labelOf(warning.kind).text, warning.lines.lines);
    if (warning.lines.firstLine == 0) return text;
    return text + fmt::format(", the first in line {}", warning.lines.firstLine);
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

const char* warningWord(trace::TraceWarning::Kind kind) {
    return labelOf(kind).word;
}

}  // namespace brevold::replay
