#include "programs/program.h"

#include <cstring>
#include <exception>
#include <iostream>

#include "base/file_identity.h"
#include "base/output_file.h"

namespace brevold {

namespace {

/** The parser takes the next argument as the value of "--option=". */
void requireValues(int argc, char** argv) {
    for (int i = 1; i < argc && strcmp(argv[i], "--") != 0; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind("--", 0) == 0 && argument.find('=') == argument.size() - 1) {
            const std::string name = argument.substr(0, argument.size() - 1);
            throw CLI::ArgumentMismatch(name + ": expected a value after the =");
        }
    }
}

}  // namespace

void printError(const CLI::App& app, const std::string& message) {
    std::cerr << app.get_name() << ": " << message << '\n';
}

int runProgram(CLI::App& app, int argc, char** argv, const std::function<void()>& check,
               const std::function<ExitStatus(std::ostream& out)>& run) {
    ExitStatus failure = ExitStatus::Failure;
    try {
        OutputFile out(kStandardStream);
        failure = ExitStatus::WrongUse;
        ExitStatus status = ExitStatus::Success;
        try {
            requireValues(argc, argv);
            app.parse(argc, argv);
            check();
            failure = ExitStatus::Failure;
            status = run(out.stream());
        } catch (const CLI::Success& request) {
            failure = ExitStatus::Failure;
            app.exit(request, out.stream());  // prints the help or the version
        }
        out.commit();
        return static_cast<int>(status);
    } catch (const CLI::ParseError& error) {
        printError(app, error.what() + std::string("\nRun with --help for more information."));
    } catch (const std::exception& error) {
        printError(app, error.what());
    }
    return static_cast<int>(failure);
}

}  // namespace brevold
