#pragma once

#include <stdexcept>

namespace brevold {

/** What is wrong with the input, for its user: "path:line: ..." or "path: ...". */
struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** What is wrong with an output file: "path: ...". */
struct OutputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace brevold
