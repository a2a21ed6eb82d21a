#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "trace/library_sections.h"

namespace brevold::trace {

/** Collects the library's sections from track events of a Perfetto trace, as a replay adds them. */
class TrackEvents {
  public:
    /** `sections` has to outlive the object. */
    explicit TrackEvents(LibrarySections& sections) : mSections(sections) {}

    /** Takes the message TrackDescriptor. */
    void addTrack(std::string_view descriptor);
    /** Takes the message TrackEvent. Ignores it unless it begins or ends a section of a thread. */
    void addEvent(int64_t timeNs, std::string_view event);

  private:
    struct Thread {
        int32_t pid;
        int32_t tid;
    };

    LibrarySections& mSections;
    std::unordered_map<uint64_t, Thread> mThreads;  // by the ids of their tracks
};

}  // namespace brevold::trace
