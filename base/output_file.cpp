#include "base/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/error.h"
#include "base/file_identity.h"

namespace brevold {

namespace {

int openDirectly(const std::string& path) {
    const int own = ownDescriptor(path);
    if (own >= 0) return fcntl(own, F_DUPFD_CLOEXEC, 0);
    return open(path.c_str(), O_WRONLY | O_CLOEXEC);
}

}  // namespace

OutputFile::OutputFile(std::string path) : mPath(std::move(path)) {
    struct stat status;
    const bool exists = stat(mPath.c_str(), &status) == 0;
    Descriptor file;
    if (ownDescriptor(mPath) >= 0 || (exists && !S_ISREG(status.st_mode))) {
        file = Descriptor(openDirectly(mPath));
        if (!file.isOpen()) fail("cannot be opened for writing");
    } else {
        mTarget = linkTarget(mPath);
        mPartial = std::make_unique<PartialFile>(mTarget, exists ? &status : nullptr);
        file = mPartial->takeDescriptor();
    }
    mStream = std::make_unique<DescriptorStream>(std::move(file));
}

void OutputFile::commit() {
    errno = 0;
    if (!mStream->close()) fail("cannot be written");
    if (mPartial != nullptr && !mPartial->rename(mTarget)) fail("cannot be written");
}

void OutputFile::fail(const char* problem) const {
    const std::string name = mPath == kStandardStream ? "standard output" : mPath;
    throw OutputError(name + ": " + problem + (errno == 0 ? "" : ": " + errnoText(errno)));
}

}  // namespace brevold
