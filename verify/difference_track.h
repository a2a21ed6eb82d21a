#pragma once

#include "report/added_marks.h"
#include "verify/verification.h"

namespace brevold::verify {

/** Returns the track "differs" of a marked trace, with a section for each difference. */
report::AddedTrack differenceTrack(const Verification& verification);

}  // namespace brevold::verify
