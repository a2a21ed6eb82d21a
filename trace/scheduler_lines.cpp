#include "base/text.h"
#include "trace/scheduler_events.h"

namespace brevold::trace {
namespace {

/** Takes the text between `key` and the next blank. */
std::string_view valueOf(std::string_view payload, std::string_view key) {
    const size_t at = payload.find(key);
    if (at == std::string_view::npos) return {};
    payload.remove_prefix(at + key.size());
    return payload.substr(0, payload.find_first_of(kBlanks));
}

}  // namespace

// sched_switch: prev_comm=board prev_pid=3471 prev_prio=120 prev_state=S ==> next_comm=Binder 1
//     next_pid=712 next_prio=112
// cpu_frequency: state=1804800 cpu_id=4
void addSchedulerEvent(const EventLine& line, std::string_view name, Activity* activity) {
    if (name == "sched_switch") {
        // Names of threads may have blanks, and the arrow.
        const std::string_view arrow = "==> next_comm=";
        const size_t at = line.event.rfind(arrow);
        if (at == std::string_view::npos) return;
        const std::string_view next = line.event.substr(at + arrow.size());
        const size_t end = next.rfind(" next_pid=");
        int32_t tid;
        if (end == std::string_view::npos || !parseWhole(valueOf(next, " next_pid="), &tid)) return;
        activity->switches.push_back({line.timeNs, line.processor, tid});
        activity->names[tid] = next.substr(0, end);
        int32_t pid;
        if (parseWhole(line.process, &pid)) activity->processes[line.tid] = pid;
    } else if (name == "cpu_frequency") {
        Activity::Frequency change = {line.timeNs, 0, 0};
        if (parseWhole(valueOf(line.event, "state="), &change.khz) &&
            parseWhole(valueOf(line.event, "cpu_id="), &change.processor)) {
            activity->frequencies.push_back(change);
        }
    }
}

}  // namespace brevold::trace
