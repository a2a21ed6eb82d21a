#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

namespace brevold {

enum ExitStatus { kSuccess = 0, kFailure = 1, kWrongUse = 2 };

/**
 * Parses the command line and runs a program. `check` finishes the check of the options before any
 * work begins. `run` writes to standard output with the given stream, and returns the exit status.
 *
 * Exceptions become messages on standard error. Returns the exit status: kWrongUse if the options
 * are wrong, kFailure if `run` threw or standard output cannot be written.
 */
int runProgram(CLI::App& app, int argc, char** argv, const std::function<void()>& check,
               const std::function<int(std::ostream& out)>& run);

/** Prints an error to standard error, after the program's name. */
void printError(const CLI::App& app, const std::string& message);

}  // namespace brevold
