#include "replay/isolated_play.h"

#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>
#include <cerrno>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "base/child_process.h"
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
    archive(options.boostDepth);
}

template <typename Archive>
void serialize(Archive& archive, ModeChange& change) {
    archive(change.timeNs, change.mode);
}

template <typename Archive>
void serialize(Archive& archive, RecordedMark& mark) {
    archive(mark.mark, mark.callerTid);
}

template <typename Archive>
void serialize(Archive& archive, Recording& recording) {
    archive(recording.options, recording.isAnyFeatureOn, recording.hints, recording.modes,
            recording.verdictTimesNs, recording.log, recording.threads, recording.marks);
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

}  // namespace

Recording playIsolated(const trace::Timeline& timeline, const std::vector<std::string>& settings,
                       const PlayOptions& options) {
    ChildProcess child([&](Descriptor output) {
        DescriptorStream stream(std::move(output));
        cereal::BinaryOutputArchive{stream}(playWithSettings(timeline, settings, options));
        return stream.close();
    });
    std::string bytes;
    if (!readAll(child.pipe().get(), &bytes)) {
        throw std::runtime_error("the replay cannot be read: " + errnoText(errno));
    }
    const ProcessEnd end = child.wait();
    if (end.signal != 0) throw std::runtime_error("the library ended the replay: " + end.text());
    if (!end.isSuccess()) throw std::runtime_error("the replay has no result: " + end.text());
    Outcome outcome;
    std::istringstream stream(std::move(bytes));
    cereal::BinaryInputArchive{stream}(outcome);
    if (!outcome.error.empty()) throw std::runtime_error(outcome.error);
    return std::move(outcome.recording);
}

}  // namespace brevold::replay
