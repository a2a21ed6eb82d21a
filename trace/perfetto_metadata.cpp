#include "trace/perfetto_metadata.h"

#include <protozero/pbf_message.hpp>

#include "trace/perfetto_fields.h"

namespace brevold::trace {
namespace {

using perfetto::FtraceCpuStats;
using perfetto::FtraceStats;
using perfetto::ProcessTree;
using perfetto::TrackDescriptor;
using protozero::pbf_message;
using protozero::pbf_wire_type;

struct NamedId {
    int32_t id = 0;
    std::string_view name;  // the first one; for a command, its arguments follow
};

template <typename Field>
NamedId readNamedId(std::string_view message, Field idField, Field nameField) {
    NamedId result;
    pbf_message<Field> fields(message);
    while (fields.next()) {
        if (fields.tag_and_type() == varint(idField)) {
            result.id = fields.get_int32();
        } else if (fields.tag_and_type() == bytes(nameField) && result.name.empty()) {
            result.name = fields.get_view();
        } else {
            fields.skip();
        }
    }
    return result;
}

bool hasLoss(std::string_view processor) {
    uint64_t lost = 0;
    pbf_message<FtraceCpuStats> fields(processor);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case varint(FtraceCpuStats::Overrun):
            case varint(FtraceCpuStats::DroppedEvents):
                lost |= fields.get_uint64();
                break;
            default:
                fields.skip();
        }
    }
    return lost != 0;
}

}  // namespace

void addProcessTree(std::string_view tree, ThreadNames* threads) {
    pbf_message<ProcessTree> fields(tree);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case bytes(ProcessTree::Processes): {
                // "/system/bin/surfaceflinger"
                const NamedId process = readNamedId(fields.get_view(), perfetto::Process::Pid,
                                                    perfetto::Process::Cmdline);
                std::string& name = (*threads)[process.id];
                if (name.empty()) name = process.name.substr(process.name.rfind('/') + 1);
                break;
            }
            case bytes(ProcessTree::Threads): {
                const NamedId thread = readNamedId(fields.get_view(), perfetto::Thread::Tid,
                                                   perfetto::Thread::Name);
                std::string& name = (*threads)[thread.id];
                if (!thread.name.empty()) name = thread.name;
                break;
            }
            default:
                fields.skip();
        }
    }
}

void addTrackThread(std::string_view descriptor, ThreadNames* threads) {
    pbf_message<TrackDescriptor> fields(descriptor);
    while (fields.next(TrackDescriptor::Thread, pbf_wire_type::length_delimited)) {
        const NamedId thread = readNamedId(fields.get_view(), perfetto::ThreadDescriptor::Tid,
                                           perfetto::ThreadDescriptor::ThreadName);
        std::string& name = (*threads)[thread.id];
        if (!thread.name.empty()) name = thread.name;
    }
}

int32_t countLossyProcessors(std::string_view stats) {
    uint32_t phase = 0;
    int32_t lossy = 0;
    pbf_message<FtraceStats> fields(stats);
    while (fields.next()) {
        switch (fields.tag_and_type()) {
            case varint(FtraceStats::Phase):
                phase = fields.get_uint32();
                break;
            case bytes(FtraceStats::CpuStats):
                lossy += hasLoss(fields.get_view()) ? 1 : 0;
                break;
            default:
                fields.skip();
        }
    }
    return phase == perfetto::kEndOfTracePhase ? lossy : 0;
}

}  // namespace brevold::trace
