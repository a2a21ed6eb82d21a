#include "base/output_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "base/descriptor.h"

namespace brevold {

namespace {

bool isSpecial(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
           !std::filesystem::is_directory(status);
}

}  // namespace

OutputFile::OutputFile(std::string path)
      : mPath(std::move(path)),
        mWrittenPath(isSpecial(mPath) ? mPath : mPath + ".part"),
        mStream(mWrittenPath, std::ios::binary) {
    if (!mStream) fail("cannot be created");
}

OutputFile::~OutputFile() {
    mStream.close();
    if (mWrittenPath != mPath) std::remove(mWrittenPath.c_str());
}

void OutputFile::commit() {
    errno = 0;
    mStream.close();
    if (!mStream) fail("cannot be written");
    if (mWrittenPath != mPath && std::rename(mWrittenPath.c_str(), mPath.c_str()) != 0) {
        fail("cannot be written");
    }
}

void OutputFile::fail(const char* what) const {
    throw OutputError(mPath + ": " + what + (errno == 0 ? "" : ": " + errnoText(errno)));
}

}  // namespace brevold
