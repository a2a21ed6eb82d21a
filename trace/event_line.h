#pragma once

#include <cstdint>
#include <string_view>

namespace brevold::trace {

/** The fields of an event line. The views point into the parsed text. */
struct EventLine {
    int64_t timeNs;
    int32_t decimals;       // of the time as written
    std::string_view task;  // name of the thread
    int32_t tid;
    int32_t processor;
    bool hasProcess;           // there is a column such as "(  712)"
    std::string_view process;  // its content without blanks; "-----" if the process is unknown
    bool hasFlags;             // there is a column such as "d..3"
    std::string_view event;    // "name: payload"
};

/**
 * Parses a line of ftrace text, with one to nine decimals in its time. Returns false if the line is
 * not an event, such as a comment.
 */
bool parseEventLine(std::string_view text, EventLine* line);

/** Returns true if the line has no event by design: it is blank or a comment. */
bool isBlankOrComment(std::string_view text);

/** Returns true if `head` contains an ftrace header or an event line. */
bool beginsAsFtrace(std::string_view head);

}  // namespace brevold::trace
