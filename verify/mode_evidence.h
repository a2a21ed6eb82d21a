#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "replay/recording.h"
#include "verify/cause.h"
#include "verify/library_marks.h"

namespace brevold::verify {

/** The frame-rate mode on the device, as far as the recording shows it. */
class ModeEvidence {
  public:
    /**
     * `compositionsNs` are the beginnings of the compositions, `modes` those of the replay. The
     * arguments have to outlive the object.
     */
    ModeEvidence(const LibraryMarks& recorded, const std::vector<replay::ModeChange>& modes,
                 const std::vector<int64_t>& compositionsNs);

    /**
     * Returns the last mode that the recording shows since the replay's mode was reset, or nullopt
     * if it shows none.
     */
    std::optional<int32_t> modeAt(int64_t timeNs) const;

    int32_t replayedModeAt(int64_t timeNs) const;

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
    std::vector<int64_t> mResetsNs;
};

}  // namespace brevold::verify
