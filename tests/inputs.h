#pragma once

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "base/error.h"
#include "report/labels.h"
#include "trace/string_source.h"
#include "trace/timeline.h"
#include "trace/trace_input.h"

/** Inputs of tests, and the errors and warnings about them. */
namespace brevold::test {

constexpr size_t kWhole = std::string::npos;

/** An input with the name "trace" that gives at most `maxRead` bytes at once. */
inline trace::TraceInput inputOf(const std::string& bytes, size_t maxRead = kWhole,
                                 const std::string& member = {}) {
    return {std::make_unique<trace::StringSource>(bytes, maxRead), "trace", member};
}

/** Returns the bytes from the source's position to its end. */
inline std::string rest(trace::ByteSource& source) {
    std::string bytes;
    char block[1000];
    while (const size_t count = source.read(block, sizeof(block)))
        bytes.append(block, count);
    return bytes;
}

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** Returns the message of the error that a function throws, or an empty text. */
template <typename Error = InputError, typename Function>
std::string errorOf(Function&& function) {
    try {
        function();
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

/** Returns the warnings about a trace, separated by newlines. */
inline std::string warningsOf(const trace::Timeline& timeline) {
    std::string text;
    for (const trace::TraceWarning& warning : timeline.warnings)
        text += (text.empty() ? "" : "\n") + report::warningText(warning);
    return text;
}

}  // namespace brevold::test
