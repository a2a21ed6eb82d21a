#pragma once

#include <vector>

#include "verify/expected_frames.h"
#include "verify/library_marks.h"
#include "verify/mode_evidence.h"

namespace brevold::verify {

/**
 * Where another mode is expected than the replay's, gives it to the frames and replaces the
 * replay's decisions for them by those that follow from it. `decisions` are in the order of frames.
 */
void expectModes(const ModeEvidence& modes, std::vector<ExpectedFrame>* frames,
                 std::vector<DecisionMark>* decisions);

}  // namespace brevold::verify
