#pragma once

#include <string>

namespace brevold::plot {

/**
 * Runs a gnuplot script, which may contain UTF-8, and returns its standard output. Throws
 * std::runtime_error if gnuplot is not installed or rejects the script.
 */
std::string runGnuplot(const std::string& script);

/** Quotes a text for a script; see printable(). */
std::string gnuplotString(const std::string& text);

}  // namespace brevold::plot
