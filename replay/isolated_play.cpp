#include "replay/isolated_play.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>
#include <type_traits>

#include "host/device_profile.h"

namespace brevold::replay {

namespace {

/** Writes and reads values of the two processes' common memory layout, in one order for both. */
class Writer {
  public:
    template <typename T>
    void operator()(const T& value) {
        static_assert(std::is_trivially_copyable_v<T>);
        mBytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
    }
    void operator()(const std::string& text) {
        (*this)(text.size());
        mBytes += text;
    }
    template <typename T, typename Each>
    void list(const std::vector<T>& values, Each each) {
        (*this)(values.size());
        for (const T& value : values)
            each(value);
    }
    const std::string& bytes() const { return mBytes; }

  private:
    std::string mBytes;
};

class Reader {
  public:
    explicit Reader(const std::string& bytes) : mBytes(bytes) {}

    template <typename T>
    void operator()(T& value) {
        memcpy(&value, take(sizeof(value)), sizeof(value));
    }
    void operator()(std::string& text) {
        size_t size = 0;
        (*this)(size);
        text.assign(take(size), size);
    }
    template <typename T, typename Each>
    void list(std::vector<T>& values, Each each) {
        size_t size = 0;
        (*this)(size);
        values.resize(size);
        for (T& value : values)
            each(value);
    }

  private:
    const char* take(size_t size) {
        if (size > mBytes.size() - mOffset) throw std::runtime_error("the replay was cut short");
        mOffset += size;
        return mBytes.data() + mOffset - size;
    }

    const std::string& mBytes;
    size_t mOffset = 0;
};

template <typename Archive, typename Record>
void transfer(Archive& archive, Record& recording) {
    archive(recording.isAnyFeatureOn);
    archive.list(recording.hints, [&](auto& hint) { archive(hint); });
    archive.list(recording.verdictTimesNs, [&](auto& timeNs) { archive(timeNs); });
    archive.list(recording.modes, [&](auto& change) { archive(change); });
    archive.list(recording.log, [&](auto& line) {
        archive(line.timeNs);
        archive(line.priority);
        archive(line.tag);
        archive(line.text);
    });
    archive.list(recording.threads, [&](auto& name) { archive(name); });
    archive.list(recording.traceMarks, [&](auto& mark) {
        archive(mark.timeNs);
        archive(mark.thread);
        archive(mark.isBegin);
        archive(mark.label);
    });
}

void writeAll(int fd, const std::string& bytes) {
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t count = write(fd, bytes.data() + done, bytes.size() - done);
        if (count <= 0) return;
        done += static_cast<size_t>(count);
    }
}

std::string readAll(int fd) {
    std::string bytes;
    char chunk[65536];
    for (ssize_t count; (count = read(fd, chunk, sizeof(chunk))) > 0;) {
        bytes.append(chunk, static_cast<size_t>(count));
    }
    return bytes;
}

/** An empty error text, then the recording; or what went wrong. */
std::string playAndPack(const trace::Timeline& timeline, const std::vector<std::string>& settings) {
    Writer writer;
    try {
        for (const std::string& setting : settings)
            host::setProfileEntry(setting);
        const Recording recording = play(timeline);
        writer(std::string());
        transfer(writer, recording);
        return writer.bytes();
    } catch (const std::exception& error) {
        Writer failure;
        failure(std::string(error.what()));
        return failure.bytes();
    }
}

}  // namespace

Recording playIsolated(const trace::Timeline& timeline, const std::vector<std::string>& settings) {
    int fds[2];
    if (pipe(fds) != 0) throw std::runtime_error("no pipe for the replay");
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no process for the replay");
    if (child == 0) {
        close(fds[0]);
        writeAll(fds[1], playAndPack(timeline, settings));
        _exit(0);
    }
    close(fds[1]);
    const std::string bytes = readAll(fds[0]);
    close(fds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) {
        throw std::runtime_error(std::string("the library ended the replay: ") +
                                 strsignal(WTERMSIG(status)));
    }

    Reader reader(bytes);
    std::string error;
    reader(error);
    if (!error.empty()) throw std::runtime_error(error);
    Recording recording;
    transfer(reader, recording);
    return recording;
}

}  // namespace brevold::replay
