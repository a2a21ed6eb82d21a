#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "trace/trace_mark.h"

namespace brevold::trace {

/** Returns true if a section with this label is the library's. The label may be incomplete. */
bool isLibraryLabel(std::string_view label);

/** A section that the library wrote into a trace. */
struct LibrarySection {
    int64_t beginNs;
    std::optional<int64_t> endNs;  // none if the trace ends first
    int32_t pid;
    int32_t tid;
    std::string label;
};

/** Collects the library's sections from the marks of a trace. */
class LibrarySections {
  public:
    /** Adds a mark of any kind. Add the marks of a thread in the order of time. */
    void add(const TraceMark& mark);

    /** Returns the sections in the order of their beginnings. Call it once, at the end. */
    std::vector<LibrarySection> take();

    /**
     * Returns the ends without a beginning on threads of the library's sections. Such a section
     * began before the recording.
     */
    int64_t endsWithoutBegin() const;

  private:
    struct Thread {
        int64_t level = 0;  // open sections of any kind
        int64_t endsWithoutBegin = 0;
        bool isLibrarys = false;
        /** The open library sections, outermost first: the level around it, and its index. */
        std::vector<std::pair<int64_t, size_t>> open;
    };

    std::vector<LibrarySection> mSections;
    std::unordered_map<int32_t, Thread> mThreads;
};

}  // namespace brevold::trace
