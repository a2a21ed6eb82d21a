#include "base/temporary_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace brevold {

Descriptor createTemporaryFile() {
    const char* const variable = getenv("TMPDIR");
    const std::string folder = variable != nullptr && *variable != '\0' ? variable : "/tmp";
    Descriptor file(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file.isOpen()) return file;
    // Not every file system supports O_TMPFILE.
    std::string path = folder + "/brevold.XXXXXX";
    file = Descriptor(mkostemp(path.data(), O_CLOEXEC));
    if (file.isOpen()) unlink(path.c_str());
    return file;
}

}  // namespace brevold
