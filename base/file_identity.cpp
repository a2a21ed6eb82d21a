#include "base/file_identity.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <map>

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

/** Returns a key of an existing file, or an empty text for devices, which keep no data, and if no
 * file exists. */
std::string keyOfFile(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return "";
    if (S_ISCHR(status.st_mode) || S_ISSOCK(status.st_mode)) return "";
    return "file " + std::to_string(status.st_dev) + " " + std::to_string(status.st_ino);
}

std::string keyOfOutput(const std::string& path) {
    const int own = ownDescriptor(path);
    const std::string key = keyOfFile(own < 0 ? path : "/dev/fd/" + std::to_string(own));
    if (!key.empty()) return key;
    return own < 0 ? canonicalName(path) : "descriptor " + std::to_string(own);
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

void requireSeparateFiles(const std::vector<std::string>& inputs,
                          const std::vector<NamedFile>& outputs) {
    std::map<std::string, std::string> uses;
    for (const std::string& input : inputs) {
        const std::string key = keyOfFile(input == kStandardStream ? "/dev/stdin" : input);
        if (!key.empty()) uses[key] = "is also an input";
    }
    for (const NamedFile& output : outputs) {
        if (output.path.empty()) throw OutputError(output.option + ": expected the name of a file");
        const std::string key = keyOfOutput(output.path);
        if (key.empty()) continue;
        const auto [use, isFirst] = uses.emplace(key, "is also the output of " + output.option);
        if (!isFirst) throw OutputError(output.option + " " + output.path + ": " + use->second);
    }
}

}  // namespace brevold
