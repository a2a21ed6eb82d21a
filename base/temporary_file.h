#pragma once

#include "base/descriptor.h"

namespace brevold {

/**
 * Creates a file without a name in the folder that TMPDIR names, else in /tmp. The file is open for
 * reading and writing and disappears when it is closed. Returns a Descriptor that is not open, with
 * errno set, if the file cannot be created.
 */
Descriptor createTemporaryFile();

}  // namespace brevold
