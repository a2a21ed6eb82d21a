#include "plot/gnuplot.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "plot/fonts.h"
#include "plot/plot_text.h"
#include "plot/run_program.h"

namespace brevold::plot {

namespace {

std::string trimLines(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    const size_t first = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

}  // namespace

std::string runGnuplot(const std::string& script) {
    const bool isSvg = script.find("set terminal svg") != std::string::npos;
    const std::string input =
            "set encoding utf8\n" + (isSvg ? script : replaceUnknownGlyphs(script));
    // The script is given as a file, because gnuplot continues after an error in typed input.
    ProgramResult gnuplot = runProgram({"gnuplot", "--default-settings", "/dev/stdin"}, input);
    if (!gnuplot.isFound) {
        throw std::runtime_error(
                "--plot needs gnuplot, which is not installed: "
                "apt-get install gnuplot-nox");
    }
    if (gnuplot.hasFailed || gnuplot.output.empty()) {
        throw std::runtime_error("gnuplot failed: " + trimLines(gnuplot.errors));
    }
    return std::move(gnuplot.output);
}

std::string gnuplotString(const std::string& text) {
    // gnuplot substitutes nothing between single quotes; a single quote is written twice.
    std::string quoted = "'";
    for (const char c : printable(text)) {
        if (c == '\'') quoted += c;
        quoted += c;
    }
    return quoted + "'";
}

}  // namespace brevold::plot
