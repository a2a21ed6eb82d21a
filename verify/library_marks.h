#pragma once

#include <cstdint>
#include <vector>

#include "trace/library_sections.h"
#include "trace/trace_form.h"
#include "verify/label.h"

namespace brevold::verify {

struct DecisionMark {
    int64_t timeNs;
    int32_t tid;
    DecisionLabel label;
};

/** A section with a label that cannot be used. */
struct UnreadableMark {
    int64_t timeNs;
    int32_t tid;
};

struct WindowMark {
    int64_t timeNs;
    WindowLabel label;
};

/** A section of a worker: a call of the performance service. */
struct ServiceSection {
    int64_t beginNs;
    int64_t endNs;  // beginNs if the trace ends first
    double scale;   // of a request, else 0
};

/** Counts of sections that were ignored, or are not whole. */
struct MarkCounts {
    int64_t cut = 0;           // labels that end early
    int64_t outOfRange = 0;    // labels with a number that does not fit
    int64_t unknown = 0;       // labels of another form
    int64_t otherProcess = 0;  // of processes other than the compositor
    int64_t withoutEnd = 0;    // the trace ends first
    int64_t withoutBegin = 0;  // the trace starts later
};

/** The library's marks in a recording. All lists are in the order of time. */
struct LibraryMarks {
    std::vector<DecisionMark> decisions;
    std::vector<UnreadableMark> unreadable;
    std::vector<WindowMark> windows;
    std::vector<ServiceSection> requests;
    std::vector<ServiceSection> boosts;
    std::vector<ServiceSection> releases;
    MarkCounts ignored;

    bool isEmpty() const {
        return decisions.empty() && windows.empty() && requests.empty() && boosts.empty() &&
               releases.empty() && unreadable.empty();
    }
};

/** Takes the sections of a trace. Those that a replay added to the library's own are left out. */
LibraryMarks recordedMarks(trace::LibrarySections& sections, const trace::TraceForm& form);

}  // namespace brevold::verify
