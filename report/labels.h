#pragma once

#include <string>

#include "host/hint.h"
#include "replay/frame_outcome.h"
#include "replay/play_options.h"
#include "trace/timeline.h"

/**
 * Names of the values of a replay: texts for readers, and the words of the JSON and CSV outputs.
 */
namespace brevold::report {

std::string periodSourceText(trace::PeriodSource source, const std::string& counter);
const char* compositionSourceText(trace::CompositionSource source);
const char* vsyncSourceText(trace::VsyncSource source);
const char* boostDepthText(replay::BoostDepth depth);
const char* outcomeText(replay::FrameOutcome outcome);
std::string warningText(const trace::TraceWarning& warning);

const char* periodSourceWord(trace::PeriodSource source);
const char* compositionSourceWord(trace::CompositionSource source);
const char* vsyncSourceWord(trace::VsyncSource source);
const char* boostDepthWord(replay::BoostDepth depth);
const char* outcomeWord(replay::FrameOutcome outcome);
const char* hintWord(host::HintKind kind);
const char* warningWord(trace::TraceWarning::Kind kind);

}  // namespace brevold::report
