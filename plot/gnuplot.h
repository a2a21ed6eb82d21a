#pragma once

#include <string>

namespace brevold::plot {

/**
 * Runs a gnuplot script and returns its standard output. Throws std::runtime_error if gnuplot is
 * not installed or rejects the script.
 */
std::string runGnuplot(const std::string& script);

/** Quotes a text for a script. All but printable ASCII characters become question marks. */
std::string gnuplotString(const std::string& text);

}  // namespace brevold::plot
