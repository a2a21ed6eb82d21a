#pragma once

#include <string>

namespace brevold::plot {

/**
 * Replaces the characters of a text that no installed font has by question marks. gnuplot's cairo
 * terminals draw them as boxes that cover the page.
 */
std::string replaceUnknownGlyphs(const std::string& text);

}  // namespace brevold::plot
