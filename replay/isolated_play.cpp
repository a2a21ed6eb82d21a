#include "replay/isolated_play.h"

#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>
#include <stdexcept>
#include <utility>

#include "base/child_process.h"
#include "base/descriptor_input.h"
#include "base/descriptor_stream.h"
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

namespace {

/** The child's message to its parent. */
struct Outcome {
    std::string error;  // empty if the recording is valid
    Recording recording;

    template <typename Archive>
    void serialize(Archive& archive) {
        archive(error, recording);
    }
};

Outcome playWithSettings(const trace::Timeline& timeline, const std::vector<std::string>& settings,
                         const PlayOptions& options) {
    try {
        for (const std::string& setting : settings)
            host::setProfileEntry(setting);
        return {"", play(timeline, options)};
    } catch (const std::exception& error) {
        return {error.what(), {}};
    }
}

/** Returns false if the child did not send all of its outcome. */
bool readOutcome(Descriptor pipe, Outcome& outcome) {
    DescriptorInput stream(std::move(pipe));
    try {
        cereal::BinaryInputArchive{stream}(outcome);
    } catch (const cereal::Exception&) {
        return false;
    }
    return true;
}

}  // namespace

Recording playIsolated(const trace::Timeline& timeline, const std::vector<std::string>& settings,
                       const PlayOptions& options) {
    ChildProcess child([&](Descriptor output) {
        DescriptorStream stream(std::move(output));
        cereal::BinaryOutputArchive{stream}(playWithSettings(timeline, settings, options));
        return stream.close();
    });
    Outcome outcome;
    const bool isComplete = readOutcome(std::move(child.pipe()), outcome);
    const ProcessEnd end = child.wait();
    if (end.signal != 0) throw std::runtime_error("the library ended the replay: " + end.text());
    if (!end.isSuccess()) throw std::runtime_error("the replay has no result: " + end.text());
    if (!isComplete) throw std::runtime_error("the replay cannot be read");
    if (!outcome.error.empty()) throw std::runtime_error(outcome.error);
    return std::move(outcome.recording);
}

}  // namespace brevold::replay
