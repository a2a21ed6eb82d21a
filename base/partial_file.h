#pragma once

#include <sys/stat.h>

#include <string>
#include <utility>

#include "base/descriptor.h"

namespace brevold {

/**
 * A new file with a unique name in the folder of its later target. It is removed with the object,
 * and when the process receives SIGINT or SIGTERM, unless rename() gave it its final name.
 *
 * At most 16 exist at a time. Create and destroy them on one thread.
 */
class PartialFile {
  public:
    /**
     * Creates "<target>.XXXXXX". It gets the mode of `replaced`, and its owner where permitted; the
     * mode of a new file if that is null. Throws OutputError, naming the target.
     */
    PartialFile(const std::string& target, const struct stat* replaced);
    ~PartialFile();
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    /** Returns the open file. Call it once. */
    Descriptor takeDescriptor() { return std::move(mFile); }

    /** Replaces any file of that name. Returns false, with errno set, on an error. */
    bool rename(const std::string& target);

  private:
    std::string mPath;
    Descriptor mFile;
    size_t mSlot;
};

}  // namespace brevold
