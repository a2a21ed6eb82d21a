#include "replay/isolated_play.h"

#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "base/process_pool.h"
#include "host/device_profile.h"
#include "replay/player.h"

namespace brevold::host {

template <typename Archive>
void serialize(Archive& archive, Hint& hint) {
    archive(hint.timeNs, hint.kind, hint.identifier, hint.durationMs, hint.type, hint.scale,
            hint.direction, hint.boostLevel);
}

template <typename Archive>
void serialize(Archive& archive, LogLine& line) {
    archive(line.timeNs, line.priority, line.tag, line.text);
}

template <typename Archive>
void serialize(Archive& archive, TraceMark& mark) {
    archive(mark.timeNs, mark.thread, mark.isBegin, mark.label);
}

}  // namespace brevold::host

namespace brevold::replay {

template <typename Archive>
void serialize(Archive& archive, PlayOptions& options) {
    archive(options.boostDepth, options.hasMarks);
}

template <typename Archive>
void serialize(Archive& archive, ModeChange& change) {
    archive(change.timeNs, change.mode);
}

template <typename Archive>
void serialize(Archive& archive, DecidedFrame& frame) {
    archive(frame.timeNs, frame.outcome);
}

template <typename Archive>
void serialize(Archive& archive, RecordedMark& mark) {
    archive(mark.mark, mark.callerTid);
}

template <typename Archive>
void serialize(Archive& archive, Recording& recording) {
    archive(recording.options, recording.isAnyFeatureOn, recording.hints, recording.hintLayers,
            recording.frames, recording.modes, recording.verdictTimesNs, recording.log,
            recording.threads, recording.marks);
}

Recording playIsolated(const trace::Timeline& timeline, const std::vector<std::string>& settings,
                       const PlayOptions& options) {
    const Job job = [&] {
        for (const std::string& setting : settings)
            host::setProfileEntry(setting);
        std::ostringstream bytes;
        cereal::BinaryOutputArchive{bytes}(play(timeline, options));
        return bytes.str();
    };
    const JobResult result = std::move(runInProcesses({job}, 1, "").front());
    if (result.signal != 0) {
        throw std::runtime_error("the library ended the replay: " + result.error);
    }
    if (!result.error.empty()) throw std::runtime_error(result.error);
    Recording recording;
    std::istringstream bytes(result.bytes);
    cereal::BinaryInputArchive{bytes}(recording);
    return recording;
}

}  // namespace brevold::replay
