#include "replay/isolated_play.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cereal/archives/binary.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "base/child_process.h"
#include "base/descriptor.h"
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

// An exception must not unwind into the parent's code.
[[noreturn]] void runChild(const trace::Timeline& timeline,
                           const std::vector<std::string>& settings, const PlayOptions& options,
                           pid_t parent, Descriptor output) noexcept {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have ended before prctl took effect.
    if (getppid() != parent) _exit(1);
    DescriptorStream stream(std::move(output));
    cereal::BinaryOutputArchive{stream}(playWithSettings(timeline, settings, options));
    stream.flush();
    _exit(stream ? 0 : 1);
}

/** Returns false if the child did not send all of its outcome. */
bool readOutcome(Descriptor input, Outcome& outcome) {
    DescriptorInput stream(std::move(input));
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
    int fds[2];
    if (pipe(fds) != 0) throw std::runtime_error("no pipe for the replay: " + errnoText(errno));
    Descriptor input(fds[0]);
    Descriptor output(fds[1]);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no process for the replay: " + errnoText(errno));
    if (child == 0) runChild(timeline, settings, options, parent, std::move(output));
    output.reset();

    Outcome outcome;
    const bool isComplete = readOutcome(std::move(input), outcome);
    const int status = waitForChild(child);
    if (WIFSIGNALED(status)) {
        throw std::runtime_error(std::string("the library ended the replay: ") +
                                 strsignal(WTERMSIG(status)));
    }
    if (WEXITSTATUS(status) != 0) {
        throw std::runtime_error("the library ended the replay: exit status " +
                                 std::to_string(WEXITSTATUS(status)));
    }
    if (!isComplete) throw std::runtime_error("the replay cannot be read");
    if (!outcome.error.empty()) throw std::runtime_error(outcome.error);
    return std::move(outcome.recording);
}

}  // namespace brevold::replay
