#pragma once

#include <string>

#include "trace/timeline.h"

/** Words for the values of a timeline: phrases for readers, and the enum words of the JSON. */
namespace brevold::replay {

std::string periodSourceText(trace::PeriodSource source, const std::string& counter);
const char* compositionSourceText(trace::CompositionSource source);
const char* vsyncSourceText(trace::VsyncSource source);
std::string warningText(const trace::TraceWarning& warning);

const char* periodSourceWord(trace::PeriodSource source);
const char* compositionSourceWord(trace::CompositionSource source);
const char* vsyncSourceWord(trace::VsyncSource source);
const char* warningWord(trace::TraceWarning::Kind kind);

}  // namespace brevold::replay
