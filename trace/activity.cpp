#include "trace/activity.h"

#include <algorithm>
#include <optional>

#include "trace/perfetto_reader.h"
#include "trace/text_mark_reader.h"
#include "trace/trace_input.h"

namespace brevold::trace {
namespace {

using BufferCall = Activity::BufferCall;

// "dequeueBuffer", or "dequeueBuffer - VRI[Board]#0(BLAST Consumer)0" in recent releases
bool isCall(std::string_view section, std::string_view function) {
    return section.substr(0, function.size()) == function &&
           (section.size() == function.size() || section[function.size()] == ' ');
}

std::optional<BufferCall::Kind> callOf(std::string_view section) {
    if (isCall(section, "dequeueBuffer")) return BufferCall::Kind::Dequeue;
    if (isCall(section, "queueBuffer")) return BufferCall::Kind::Queue;
    return {};
}

/** Finds the buffer calls among the sections of all threads. */
class BufferCalls {
  public:
    explicit BufferCalls(Activity& activity) : mActivity(activity) {}

    void add(const TraceMark& mark) {
        if (mark.kind == TraceMark::Kind::Counter) return;
        std::vector<Section>& open = mOpen[mark.tid];
        if (mark.kind == TraceMark::Kind::Begin) {
            mActivity.processes.emplace(mark.tid, mark.pid);
            open.push_back({callOf(mark.name), mark.pid, mark.timeNs});
        } else if (!open.empty()) {
            const Section section = open.back();
            open.pop_back();
            if (!section.kind) return;
            mActivity.bufferCalls.push_back(
                    {*section.kind, section.pid, mark.tid, section.beginNs, mark.timeNs});
        }
    }

  private:
    struct Section {
        std::optional<BufferCall::Kind> kind;
        int32_t pid;
        int64_t beginNs;
    };

    Activity& mActivity;
    std::unordered_map<int32_t, std::vector<Section>> mOpen;
};

template <typename Event>
void sortByTime(std::vector<Event>& events) {
    std::stable_sort(events.begin(), events.end(),
                     [](const Event& a, const Event& b) { return a.timeNs < b.timeNs; });
}

template <typename Reader>
Activity readAll(TraceInput& input) {
    Activity activity;
    Reader reader(input.open(), input.name(), &activity);
    BufferCalls calls(activity);
    for (TraceMark mark; reader.next(&mark);)
        calls.add(mark);
    sortByTime(activity.switches);
    sortByTime(activity.frequencies);
    activity.names.insert(reader.form().threads.begin(), reader.form().threads.end());
    return activity;
}

}  // namespace

Activity readActivity(TraceInput& input) {
    switch (input.kind()) {
        case TraceInput::Kind::FtraceText:
            return readAll<TextMarkReader>(input);
        case TraceInput::Kind::Perfetto:
            return readAll<PerfettoReader>(input);
        case TraceInput::Kind::LatencyDump:
            break;
    }
    return {};
}

}  // namespace brevold::trace
