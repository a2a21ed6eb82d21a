#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

namespace brevold {

/**
 * Parses the command line and runs a program. `check` finishes the check of the options before any
 * work begins. `run` writes to standard output with the given stream, and returns false if it
 * reported an error and continued. Exceptions become messages on standard error.
 *
 * Returns the exit status: 0, 1 if `run` or a write to standard output failed, or 2 if the options
 * are wrong.
 */
int runProgram(CLI::App& app, int argc, char** argv, const std::function<void()>& check,
               const std::function<bool(std::ostream& out)>& run);

/** Prints an error to standard error, after the program's name. */
void printError(const CLI::App& app, const std::string& message);

}  // namespace brevold
