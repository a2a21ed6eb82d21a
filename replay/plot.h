#pragma once

#include <ostream>
#include <string>

#include "replay/player.h"
#include "trace/timeline.h"

namespace brevold::replay {

/** The gnuplot terminal for a picture's path: ".svg" or ".png". Throws OutputError otherwise. */
std::string plotTerminal(const std::string& path);

/** Draws a replay on one page, time across. Throws std::runtime_error when gnuplot does not. */
void plot(const std::string& trace, const trace::Timeline& timeline, const Recording& recording,
          const std::string& terminal, std::ostream& out);

}  // namespace brevold::replay
