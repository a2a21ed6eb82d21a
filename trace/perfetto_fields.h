#pragma once

#include <protozero/types.hpp>

/** Field numbers and values of the Perfetto trace format: of the messages read or written here. */
namespace brevold::trace::perfetto {

using Tag = protozero::pbf_tag_type;

enum class Trace : Tag { Packet = 1 };

enum class TracePacket : Tag {
    FtraceEvents = 1,
    ProcessTree = 2,
    TrustedUid = 3,
    ClockSnapshot = 6,
    Timestamp = 8,
    SequenceId = 10,
    TrackEvent = 11,
    FtraceStats = 34,
    CompressedPackets = 50,
    TimestampClockId = 58,
    TrackDescriptor = 60,
    FrameTimelineEvent = 76,
};

enum class FtraceEventBundle : Tag {
    Cpu = 1,
    Event = 2,
    LostEvents = 3,
    CompactSched = 4,
    FtraceClock = 5,
    FtraceTimestamp = 6,
    BootTimestamp = 7,
};
constexpr uint32_t kFtraceClockBoot = 0;
constexpr uint32_t kFtraceClockMonotonicRaw = 4;

enum class FtraceEvent : Tag {
    Timestamp = 1,
    Pid = 2,
    Print = 3,
    SchedSwitch = 4,
    CpuFrequency = 11,
};
enum class PrintEvent : Tag { Buf = 2 };
enum class SchedSwitchEvent : Tag { NextComm = 5, NextPid = 6 };
enum class CpuFrequencyEvent : Tag { State = 1, CpuId = 2 };
enum class CompactSched : Tag {
    SwitchTimestamp = 1,
    SwitchNextPid = 3,
    InternTable = 5,
    SwitchNextCommIndex = 6,
};

enum class FtraceStats : Tag { Phase = 1, CpuStats = 2 };
constexpr uint32_t kEndOfTracePhase = 2;
enum class FtraceCpuStats : Tag { Overrun = 3, DroppedEvents = 8 };

enum class ClockSnapshot : Tag { Clocks = 1 };
enum class Clock : Tag { ClockId = 1, Timestamp = 2 };
constexpr uint32_t kMonotonicRawClock = 5;
constexpr uint32_t kBootClock = 6;

enum class ProcessTree : Tag { Processes = 1, Threads = 2 };
enum class Process : Tag { Pid = 1, Cmdline = 3 };
enum class Thread : Tag { Tid = 1, Name = 2, Pid = 3 };

enum class FrameTimelineEvent : Tag { ActualSurfaceFrameStart = 4, FrameEnd = 5 };
enum class ActualSurfaceFrame : Tag { Cookie = 1, LayerName = 5, PresentType = 6, JankType = 9 };
enum class FrameEnd : Tag { Cookie = 1 };

enum class TrackDescriptor : Tag {
    Uuid = 1,
    Name = 2,
    Process = 3,
    Thread = 4,
    ParentUuid = 5,
    Counter = 8,
};
enum class ProcessDescriptor : Tag { Pid = 1 };
enum class ThreadDescriptor : Tag { Pid = 1, Tid = 2, ThreadName = 5 };

enum class TrackEvent : Tag { Type = 9, TrackUuid = 11, Name = 23, CounterValue = 30 };
constexpr int32_t kSliceBegin = 1;
constexpr int32_t kSliceEnd = 2;
constexpr int32_t kCounter = 4;

/** A field's tag and wire type, as the cases of a switch over pbf_message::tag_and_type(). */
template <typename Field>
constexpr uint32_t varint(Field field) {
    return protozero::tag_and_type(static_cast<Tag>(field), protozero::pbf_wire_type::varint);
}
template <typename Field>
constexpr uint32_t bytes(Field field) {
    return protozero::tag_and_type(static_cast<Tag>(field),
                                   protozero::pbf_wire_type::length_delimited);
}

}  // namespace brevold::trace::perfetto
