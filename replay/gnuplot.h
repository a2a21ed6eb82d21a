#pragma once

#include <string>

namespace brevold::replay {

/**
 * What gnuplot draws for a script, on its standard output. Throws std::runtime_error when gnuplot
 * is not installed or refuses the script.
 */
std::string runGnuplot(const std::string& script);

/** A quoted string for a script. What is no printable ASCII becomes a question mark. */
std::string gnuplotString(const std::string& text);

}  // namespace brevold::replay
