#pragma once

#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "base/error.h"
#include "report/labels.h"
#include "trace/read_timeline.h"
#include "trace/string_source.h"

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

/**
 * Reads a trace twice, because the first reading gives the bytes of the head at once, and only the
 * second one in small reads.
 */
inline trace::Timeline read(const std::string& bytes, const trace::TimelineOptions& options = {},
                            size_t maxRead = 4096, trace::TraceForm* form = nullptr) {
    trace::TraceInput input = inputOf(bytes, maxRead);
    rest(input.open());
    return trace::readTimeline(input, options, form);
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

/** Returns the names of the layers with their numbers of frames. */
inline std::string layersOf(const trace::Timeline& timeline) {
    std::string text;
    for (const trace::Layer& layer : timeline.layers)
        text += fmt::format("{}*{} ", layer.name, layer.frames);
    return text;
}

/**
 * Returns the events, layers and sources of a timeline. Times are in units of `unitNs`; < and > are
 * the start and the end of a composition, | is a vsync.
 */
inline std::string describe(const trace::Timeline& timeline, int64_t unitNs = 1) {
    using Kind = trace::TimelineEvent::Kind;
    std::string text;
    for (const trace::TimelineEvent& event : timeline.events) {
        text += std::to_string(event.timeNs / unitNs);
        if (event.kind == Kind::Period) {
            text += fmt::format(" {} ", event.periodNs);
        } else if (event.kind == Kind::Depth || event.kind == Kind::Frame) {
            text += fmt::format("{}={} ", timeline.layers[static_cast<size_t>(event.layer)].name,
                                event.depth);
        } else {
            text += fmt::format("{} ", "   <>|"[static_cast<size_t>(event.kind)]);
        }
    }
    return text + fmt::format("to {}; {}; {}, {}", timeline.endNs / unitNs, layersOf(timeline),
                              report::compositionSourceText(timeline.compositionSource),
                              report::vsyncSourceText(timeline.vsyncSource));
}

}  // namespace brevold::test
