#pragma once

#include <string>

#include "base/descriptor.h"
#include "trace/byte_source.h"

namespace brevold::trace {

/**
 * Copies the rest of a source to a temporary file and returns the file, at its first byte. Throws
 * InputError, with a message that begins with `name`.
 */
Descriptor copyToTemporaryFile(ByteSource& source, const std::string& name);

}  // namespace brevold::trace
