#pragma once

#include <string>

#include "trace/timeline.h"
#include "verify/cause.h"
#include "verify/differences.h"
#include "verify/verification.h"

/** The names of the values of a verification: for readers, and in the JSON output. */
namespace brevold::verify {

const char* textOf(Cause cause);
/** "decisions: a frame is not reported" */
std::string describe(const Difference& difference);
/** Joins the texts of the causes. */
std::string textOf(const CauseSet& causes, const std::string& separator);
const char* textOf(LatencyKind kind);
const char* textOf(ProfileGap gap);

const char* wordOf(Cause cause);
/** Also for readers. */
const char* wordOf(Subject subject);
const char* wordOf(LatencyKind kind);
const char* wordOf(ProfileGap gap);
const char* wordOf(Verdict verdict);

}  // namespace brevold::verify
