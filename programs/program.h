#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

namespace brevold {

enum class ExitStatus {
    Success = 0,
    Failure = 1,         // an input or an output failed
    WrongUse = 2,        // of the options or the profile
    VerdictNotGood = 3,  // of --verify
};

/**
 * Parses the command line and runs a program. `check` finishes the check of the options before any
 * work begins. `run` writes to standard output with the given stream, and returns
 * ExitStatus::Failure if it reported an error and continued. Exceptions become messages on standard
 * error. Returns the exit status.
 */
int runProgram(CLI::App& app, int argc, char** argv, const std::function<void()>& check,
               const std::function<ExitStatus(std::ostream& out)>& run);

/** Prints an error to standard error, after the program's name. */
void printError(const CLI::App& app, const std::string& message);

}  // namespace brevold
