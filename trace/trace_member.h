#pragma once

#include <memory>
#include <string>

#include "trace/byte_source.h"
#include "trace/expansion_limit.h"

namespace brevold::trace {

/** The parts of a path ARCHIVE:MEMBER. */
struct MemberPath {
    std::string file;
    std::string member;  // empty in the path of a file
};

/** Splits a path at a colon if no file has the whole path, but one has the part before the colon.
 */
MemberPath splitMemberPath(const std::string& path);

/**
 * Opens a member of the zip archive that `archive` gives from its position on. If `member` is
 * empty, opens the only trace in the archive; a bug report has its traces in a certain folder.
 * Throws InputError, with a message that begins with `name`.
 */
std::unique_ptr<ByteSource> openTraceMember(ByteSource& archive, const std::string& name,
                                            const std::string& member, ExpansionLimits limits);

}  // namespace brevold::trace
