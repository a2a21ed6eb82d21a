#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * The platform around the library in a process of its own: a program that links this and exports
 * its symbols supplies systemTime, the log, the trace facility, android::Thread::run and the
 * condition-variable calls to every library that it opens. Time stands still but for setTimeNs(),
 * log lines and trace marks are kept, and the library's workers can be stepped.
 *
 * All functions are for the main thread.
 */
namespace brevold::host {

struct LogLine {
    int64_t timeNs;
    int priority;
    std::string tag;
    std::string text;
};

struct TraceMark {
    int64_t timeNs;
    /** Index into startedThreads(), or -1 for the main thread. */
    int32_t thread;
    /** False: the end of a section; it has no label. */
    bool isBegin;
    std::string label;
};

void setTimeNs(int64_t timeNs);

/** The tags that the trace facility calls enabled; all at first. */
void setEnabledTraceTags(uint64_t tags);

/** What was logged and marked since the last call. */
std::vector<LogLine> takeLog();
std::vector<TraceMark> takeTraceMarks();

}  // namespace brevold::host
