#pragma once

#include <string>
#include <vector>

namespace brevold {

/** The name of standard input among the inputs, of standard output among the outputs. */
constexpr char kStandardStream[] = "-";

/** A file that the user named, and the option or argument that named it. */
struct NamedFile {
    std::string option;
    std::string path;
};

/**
 * Returns the path that symbolic links lead to; no file needs to exist there. Throws OutputError on
 * a cycle.
 */
std::string linkTarget(const std::string& path);

/**
 * Returns the descriptor of this process that the name of an output leads to: 1 for "-" and
 * "/dev/stdout", 3 for "/dev/fd/3", -1 for any other name.
 */
int ownDescriptor(const std::string& path);

/**
 * Throws OutputError if the name of an output is empty, or leads to the same file as an input or
 * another output. The file of an output does not need to exist.
 */
void requireSeparateFiles(const std::vector<std::string>& inputs,
                          const std::vector<NamedFile>& outputs);

}  // namespace brevold
