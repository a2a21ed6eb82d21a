#pragma once

#include <string>
#include <string_view>

namespace brevold::trace {

/**
 * Throws InputError if bytes that begin with `head` are in a known format that cannot be read. The
 * message begins with `name` and says how to get a trace that can.
 */
void requireReadable(std::string_view head, const std::string& name);

}  // namespace brevold::trace
