#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * A program that links this and exports its symbols supplies systemTime, the log and the trace
 * facility to every library that it opens. Time changes only through setTimeNs(), and log lines and
 * trace marks are kept. The workers are separate; see host/workers.h.
 *
 * Call the functions from the main thread only.
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
    /** The worker, or kMainThread; see currentWorker(). */
    int32_t thread;
    /** False for the end of a section, which has no label. */
    bool isBegin;
    std::string label;
};

void setTimeNs(int64_t timeNs);

/** Sets the trace tags that are enabled. Initially all are. */
void setEnabledTraceTags(uint64_t tags);

/** Return the log lines and trace marks since the last call. */
std::vector<LogLine> takeLog();
std::vector<TraceMark> takeTraceMarks();

}  // namespace brevold::host
