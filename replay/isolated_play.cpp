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
#include <sstream>
#include <stdexcept>

#include "base/child_process.h"
#include "base/descriptor.h"
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

// An exception must not unwind into the parent's code.
[[noreturn]] void runChild(const trace::Timeline& timeline,
                           const std::vector<std::string>& settings, const PlayOptions& options,
                           pid_t parent, int fd) noexcept {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have ended before prctl took effect.
    if (getppid() != parent) _exit(1);
    std::ostringstream bytes;
    cereal::BinaryOutputArchive{bytes}(playWithSettings(timeline, settings, options));
    _exit(writeAll(fd, bytes.str()) ? 0 : 1);
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
    if (child == 0) runChild(timeline, settings, options, parent, output.get());
    output.reset();

    std::string bytes;
    const int readError = readAll(input.get(), &bytes) ? 0 : errno;
    input.reset();
    const int status = waitForChild(child);
    if (readError != 0) {
        throw std::runtime_error("the replay cannot be read: " + errnoText(readError));
    }
    if (WIFSIGNALED(status)) {
        throw std::runtime_error(std::string("the library ended the replay: ") +
                                 strsignal(WTERMSIG(status)));
    }
    if (WEXITSTATUS(status) != 0) {
        throw std::runtime_error("the library ended the replay: exit status " +
                                 std::to_string(WEXITSTATUS(status)));
    }
    Outcome outcome;
    std::istringstream stream(bytes);
    cereal::BinaryInputArchive{stream}(outcome);
    if (!outcome.error.empty()) throw std::runtime_error(outcome.error);
    return std::move(outcome.recording);
}

}  // namespace brevold::replay
