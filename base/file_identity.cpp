#include "base/file_identity.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "base/descriptor.h"
#include "base/error.h"
#include "base/text.h"

namespace brevold {

namespace {

namespace fs = std::filesystem;

constexpr int kMaxLinks = 40;  // as the kernel's

/** Returns the path with a folder free of links, or an empty text if the folder does not exist. */
std::string canonicalName(const std::string& path) {
    const fs::path target(linkTarget(path));
    std::error_code error;
    const fs::path folder =
            fs::canonical(target.has_parent_path() ? target.parent_path() : ".", error);
    return error ? std::string() : (folder / target.filename()).string();
}

}  // namespace

std::string linkTarget(const std::string& path) {
    fs::path target(path);
    for (int links = 0; links < kMaxLinks; ++links) {
        std::error_code error;
        const fs::path next = fs::read_symlink(target, error);
        if (error) return target.string();
        target = target.parent_path() / next;
    }
    throw OutputError(path + ": " + errnoText(ELOOP));
}

int ownDescriptor(const std::string& path) {
    if (path == kStandardStream) return STDOUT_FILENO;
    std::error_code error;
    const fs::path own = fs::canonical("/proc/self/fd", error);
    // Follow one link at a time, because the last one leads out of the folder: "/dev/stdout" to
    // "/proc/self/fd/1", and that to a file, "pipe:[123]" or a terminal.
    fs::path target(path);
    for (int links = 0; links < kMaxLinks && !error; ++links) {
        const fs::path folder =
                fs::canonical(target.has_parent_path() ? target.parent_path() : ".", error);
        int fd = -1;
        if (!error && folder == own && parseWhole(target.filename().string(), &fd)) return fd;
        const fs::path next = fs::read_symlink(target, error);
        if (!error) target = folder / next;
    }
    return -1;
}

bool isSameFile(const std::string& first, const std::string& second) {
    struct stat a;
    struct stat b;
    const bool hasFirst = stat(first.c_str(), &a) == 0;
    const bool hasSecond = stat(second.c_str(), &b) == 0;
    if (hasFirst && hasSecond) return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
    if (hasFirst || hasSecond) return false;
    const std::string name = canonicalName(first);
    return !name.empty() && name == canonicalName(second);
}

void requireSeparateFiles(const std::vector<std::string>& inputs,
                          const std::vector<NamedFile>& outputs) {
    for (const NamedFile& output : outputs) {
        if (output.path.empty()) throw OutputError(output.option + ": expected the name of a file");
    }
    for (size_t i = 0; i < outputs.size(); ++i) {
        const NamedFile& output = outputs[i];
        for (const std::string& input : inputs) {
            // Standard input and standard output are two streams with one name.
            if (input == kStandardStream || output.path == kStandardStream) continue;
            if (isSameFile(input, output.path)) {
                throw OutputError(output.option + " " + output.path + ": is also an input");
            }
        }
        for (size_t other = 0; other < i; ++other) {
            if (output.path == outputs[other].path ||
                isSameFile(output.path, outputs[other].path)) {
                throw OutputError(output.option + " " + output.path + ": is also the file of " +
                                  outputs[other].option);
            }
        }
    }
}

}  // namespace brevold
