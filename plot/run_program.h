#pragma once

#include <string>
#include <vector>

namespace brevold::plot {

struct ProgramResult {
    bool isFound;    // false if the program is not installed
    bool hasFailed;  // its exit status is not 0
    std::string output;
    std::string errors;
};

/**
 * Runs a program of the search path and waits for it. `input` is its standard input, as a file.
 * Throws std::runtime_error if that is impossible for another reason than a missing program.
 */
ProgramResult runProgram(const std::vector<const char*>& arguments, const std::string& input);

}  // namespace brevold::plot
