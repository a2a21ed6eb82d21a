#pragma once

#include <stdexcept>

namespace brevold {

/** An input cannot be used. The message begins with "path:line: " or "path: ". */
struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** An output cannot be written. The message begins with "path: " if the output has a path. */
struct OutputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace brevold
