#include <protozero/pbf_message.hpp>
#include <vector>

#include "trace/perfetto_fields.h"
#include "trace/scheduler_events.h"

namespace brevold::trace {
namespace {

using namespace perfetto;
using protozero::pbf_message;

void addSwitch(std::string_view event, int64_t timeNs, int32_t processor, Activity* activity) {
    Activity::Switch change = {timeNs, processor, 0};
    std::string_view name;
    pbf_message<SchedSwitchEvent> fields(event);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case bytes(SchedSwitchEvent::NextComm):
                name = fields.get_view();
                break;
            case varint(SchedSwitchEvent::NextPid):
                change.tid = fields.get_int32();
                break;
            default:
                fields.skip();
        }
    }
    activity->switches.push_back(change);
    activity->names[change.tid] = name;
}

void addFrequency(std::string_view event, int64_t timeNs, Activity* activity) {
    Activity::Frequency change = {timeNs, 0, 0};
    pbf_message<CpuFrequencyEvent> fields(event);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case varint(CpuFrequencyEvent::State):
                change.khz = fields.get_uint32();
                break;
            case varint(CpuFrequencyEvent::CpuId):
                change.processor = fields.get_int32();
                break;
            default:
                fields.skip();
        }
    }
    activity->frequencies.push_back(change);
}

void addEvent(std::string_view event, uint64_t offsetNs, int32_t processor, Activity* activity) {
    int64_t timeNs = 0;
    pbf_message<FtraceEvent> fields(event);
    // The time precedes the event.
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case varint(FtraceEvent::Timestamp):
                timeNs = static_cast<int64_t>(fields.get_uint64() + offsetNs);
                break;
            case bytes(FtraceEvent::SchedSwitch):
                addSwitch(fields.get_view(), timeNs, processor, activity);
                break;
            case bytes(FtraceEvent::CpuFrequency):
                addFrequency(fields.get_view(), timeNs, activity);
                break;
            default:
                fields.skip();
        }
    }
}

/** Parallel arrays; each time is the difference from the one before. */
void addCompact(std::string_view message, uint64_t offsetNs, int32_t processor,
                Activity* activity) {
    std::vector<uint64_t> times;
    std::vector<int32_t> tids;
    std::vector<uint32_t> nameIndices;
    std::vector<std::string_view> names;
    pbf_message<CompactSched> fields(message);
    const auto append = [](const auto& range, auto& values) {
        values.insert(values.end(), range.begin(), range.end());
    };
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case bytes(CompactSched::SwitchTimestamp):
                append(fields.get_packed_uint64(), times);
                break;
            case bytes(CompactSched::SwitchNextPid):
                append(fields.get_packed_int32(), tids);
                break;
            case bytes(CompactSched::InternTable):
                names.push_back(fields.get_view());
                break;
            case bytes(CompactSched::SwitchNextCommIndex):
                append(fields.get_packed_uint32(), nameIndices);
                break;
            default:
                fields.skip();
        }
    }
    uint64_t timeNs = offsetNs;
    for (size_t i = 0; i < times.size() && i < tids.size(); ++i) {
        timeNs += times[i];
        activity->switches.push_back({static_cast<int64_t>(timeNs), processor, tids[i]});
        if (i < nameIndices.size() && nameIndices[i] < names.size()) {
            activity->names[tids[i]] = names[nameIndices[i]];
        }
    }
}

}  // namespace

void addSchedulerEvents(std::string_view bundle, uint64_t offsetNs, Activity* activity) {
    int32_t processor = 0;
    pbf_message<FtraceEventBundle> header(bundle);
    while (header.next(FtraceEventBundle::Cpu, protozero::pbf_wire_type::varint))
        processor = header.get_int32();
    pbf_message<FtraceEventBundle> fields(bundle);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case bytes(FtraceEventBundle::Event):
                addEvent(fields.get_view(), offsetNs, processor, activity);
                break;
            case bytes(FtraceEventBundle::CompactSched):
                addCompact(fields.get_view(), offsetNs, processor, activity);
                break;
            default:
                fields.skip();
        }
    }
}

void addThreadProcesses(std::string_view tree, Activity* activity) {
    pbf_message<ProcessTree> fields(tree);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case bytes(ProcessTree::Processes): {
                pbf_message<Process> process(fields.get_view());
                while (process.next(Process::Pid, protozero::pbf_wire_type::varint)) {
                    const int32_t pid = process.get_int32();
                    activity->processes[pid] = pid;
                }
                break;
            }
            case bytes(ProcessTree::Threads): {
                int32_t tid = 0;
                int32_t pid = 0;
                pbf_message<Thread> thread(fields.get_view());
                while (thread.next()) {
                    switch (thread.tag_and_type()) {
                        case varint(Thread::Tid):
                            tid = thread.get_int32();
                            break;
                        case varint(Thread::Pid):
                            pid = thread.get_int32();
                            break;
                        default:
                            thread.skip();
                    }
                }
                activity->processes[tid] = pid;
                break;
            }
            default:
                fields.skip();
        }
    }
}

}  // namespace brevold::trace
