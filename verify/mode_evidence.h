#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "replay/recording.h"
#include "verify/cause.h"
#include "verify/expected_frames.h"
#include "verify/library_marks.h"

namespace brevold::verify {

/** The frame-rate mode on the device, as far as the recording shows it. */
class ModeEvidence {
  public:
    /** `modes` are those of the replay. The arguments have to outlive the object. */
    ModeEvidence(const LibraryMarks& recorded, const std::vector<replay::ModeChange>& modes,
                 const Expectation& expected);

    /** Returns the mode on the device, or nullopt if the recording does not show it yet. */
    std::optional<int32_t> modeAt(int64_t timeNs) const;

    int32_t replayedModeAt(int64_t timeNs) const;

    /**
     * Returns the mode that a correct integration has. A replay's measuring windows begin at other
     * times than those of the device, so this is the recorded mode if causeAt() is WindowStart, and
     * else the replay's.
     */
    int32_t expectedModeAt(int64_t timeNs) const;

    /**
     * Returns the cause of a mode that differs from the replay's: TickRate if the measuring window
     * in force shows another rate than that of the compositions, else WindowStart.
     */
    Cause causeAt(int64_t timeNs) const;

  private:
    struct RecordedMode {
        int64_t timeNs;
        int32_t mode;
    };

    bool hasRateOfCompositions(const WindowMark& window) const;

    const LibraryMarks& mRecorded;
    const std::vector<int64_t>& mCompositionsNs;
    std::vector<RecordedMode> mModes;
    const std::vector<replay::ModeChange>& mReplayed;
};

/**
 * Completes the frames of a correct integration: sets the mode where another one is expected than
 * the replay's, and the decisions.
 */
void expectDecisions(const ModeEvidence& modes, std::vector<ExpectedFrame>* frames);

}  // namespace brevold::verify
