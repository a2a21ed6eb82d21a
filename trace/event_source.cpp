#include "trace/event_source.h"

#include <algorithm>
#include <tuple>

namespace brevold::trace {
namespace {

struct Head {
    PlacedEvent next;
    EventSource* source;
};

bool isLater(const Head& a, const Head& b) {
    return std::tie(a.next.event.timeNs, a.next.place) >
           std::tie(b.next.event.timeNs, b.next.place);
}

}  // namespace

std::deque<TimelineEvent> mergeEvents(EventSources sources) {
    std::vector<Head> heads;  // a heap with the earliest at its front
    for (const std::unique_ptr<EventSource>& source : sources) {
        Head head = {{}, source.get()};
        if (source->next(&head.next)) heads.push_back(head);
    }
    std::make_heap(heads.begin(), heads.end(), isLater);
    std::deque<TimelineEvent> events;
    while (!heads.empty()) {
        std::pop_heap(heads.begin(), heads.end(), isLater);
        Head& earliest = heads.back();
        events.push_back(earliest.next.event);
        if (earliest.source->next(&earliest.next)) {
            std::push_heap(heads.begin(), heads.end(), isLater);
        } else {
            heads.pop_back();
        }
    }
    return events;
}

}  // namespace brevold::trace
