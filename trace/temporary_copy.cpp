#include "trace/temporary_copy.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>

#include "base/error.h"
#include "base/temporary_file.h"

namespace brevold::trace {
namespace {

constexpr size_t kCopyBlockBytes = 64 * 1024;

[[noreturn]] void failWithErrno(const std::string& name) {
    throw InputError(fmt::format("{}: cannot be copied to a temporary file in $TMPDIR or /tmp: {}",
                                 name, errnoText(errno)));
}

}  // namespace

Descriptor copyToTemporaryFile(ByteSource& source, const std::string& name) {
    Descriptor copy = createTemporaryFile();
    if (!copy.isOpen()) failWithErrno(name);
    std::string block(kCopyBlockBytes, '\0');
    while (const size_t count = source.read(block.data(), block.size())) {
        if (!writeAll(copy.get(), {block.data(), count})) failWithErrno(name);
    }
    lseek(copy.get(), 0, SEEK_SET);
    return copy;
}

}  // namespace brevold::trace
