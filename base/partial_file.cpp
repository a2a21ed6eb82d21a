#include "base/partial_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "base/error.h"

namespace brevold {

namespace {

constexpr size_t kMaxFiles = 16;
constexpr int kSignals[] = {SIGINT, SIGTERM};

/** Paths to remove on a signal; null where a slot is free. The handler only reads them. */
std::atomic<const char*> gPaths[kMaxFiles];

void removeAll(int signal) {
    for (const std::atomic<const char*>& path : gPaths) {
        if (const char* const name = path.load()) unlink(name);
    }
    // The handler was reset on entry: the signal now ends the process, with its own status.
    raise(signal);
}

void installHandlers() {
    for (const int signal : kSignals) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_DFL) continue;
        action.sa_handler = removeAll;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
    }
}

/** Blocks both signals while a file exists that is not registered in gPaths. */
class SignalBlock {
  public:
    SignalBlock() {
        sigset_t blocked;
        sigemptyset(&blocked);
        for (const int signal : kSignals)
            sigaddset(&blocked, signal);
        pthread_sigmask(SIG_BLOCK, &blocked, &mBefore);
    }
    ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;

  private:
    sigset_t mBefore;
};

mode_t modeOfNewFiles() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

}  // namespace

PartialFile::PartialFile(const std::string& target, const struct stat* replaced)
      : mPath(target + ".XXXXXX"), mSlot(0) {
    installHandlers();
    while (mSlot < kMaxFiles && gPaths[mSlot].load() != nullptr)
        ++mSlot;
    if (mSlot == kMaxFiles) throw OutputError(target + ": too many files are open for writing");
    const SignalBlock block;
    mFile = Descriptor(mkostemp(mPath.data(), O_CLOEXEC));
    if (!mFile.isOpen()) throw OutputError(target + ": cannot be created: " + errnoText(errno));
    gPaths[mSlot] = mPath.c_str();
    // The owner first: changing it may clear mode bits. Only root may give a file away.
    if (replaced != nullptr && fchown(mFile.get(), replaced->st_uid, replaced->st_gid) != 0) {
        errno = 0;
    }
    fchmod(mFile.get(), replaced != nullptr ? replaced->st_mode & 07777 : modeOfNewFiles());
}

PartialFile::~PartialFile() {
    const SignalBlock block;
    if (gPaths[mSlot].exchange(nullptr) != nullptr && !mPath.empty()) unlink(mPath.c_str());
}

bool PartialFile::rename(const std::string& target) {
    const SignalBlock block;
    if (std::rename(mPath.c_str(), target.c_str()) != 0) return false;
    gPaths[mSlot] = nullptr;
    mPath.clear();
    return true;
}

}  // namespace brevold
