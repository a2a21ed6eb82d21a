#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * A program that links this and exports its symbols supplies systemTime, the log, the trace
 * facility, android::Thread::run and the condition-variable calls to every library that it opens.
 * Time changes only through setTimeNs(), log lines and trace marks are kept, and the library's
 * workers can be stepped.
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
    /** Index into startedThreads(), or -1 for any other thread. */
    int32_t thread;
    /** False for the end of a section, which has no label. */
    bool isBegin;
    std::string label;
};

struct StartedThread {
    std::string name;
    int32_t priority;
    size_t stackBytes;
};

void setTimeNs(int64_t timeNs);

/** Sets the trace tags that are enabled. Initially all are. */
void setEnabledTraceTags(uint64_t tags);

/** Return the log lines and trace marks since the last call. */
std::vector<LogLine> takeLog();
std::vector<TraceMark> takeTraceMarks();

/** Returns every android::Thread that was run, in order. */
std::vector<StartedThread> startedThreads();

/** Blocks until every started thread has ended or waits with no wake-up pending. */
void settle();

/**
 * Keeps the threads in their waits even if they are signalled, so requests stay unsent until
 * releaseWorkers(). Do not call settle() in between.
 */
void holdWorkers();
void releaseWorkers();

/** Returns how often the conditions of started threads were signalled, waiting thread or not. */
int signalCount();

/** Wakes a waiting thread without a request. */
void wakeSpuriously(size_t thread);

/** Makes the wait of a waiting thread return an error number. The thread must then end. */
void failWait(size_t thread, int error);

}  // namespace brevold::host
