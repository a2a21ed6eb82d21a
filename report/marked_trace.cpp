#include "report/marked_trace.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/time_units.h"
#include "report/added_marks.h"
#include "trace/event_line.h"
#include "trace/line_reader.h"

namespace brevold::report {

namespace {

constexpr size_t kTaskWidth = 16;
const std::string kUnknownTask = "<...>";

/** Pads to a width in bytes, as the kernel does. */
std::string padded(const std::string& task) {
    return std::string(kTaskWidth - std::min(task.size(), kTaskWidth), ' ') + task;
}

std::string payloadOf(const AddedMark& mark, const trace::TraceForm& form) {
    switch (mark.kind) {
        case AddedMark::Kind::Begin:
            return fmt::format("B|{}|{}", form.compositorPid, mark.name);
        case AddedMark::Kind::End:
            return form.style.endHasProcess ? fmt::format("E|{}", form.compositorPid) : "E";
        case AddedMark::Kind::Counter:
            return fmt::format("C|{}|{}|{}", form.compositorPid, mark.name, mark.value);
    }
    return "";
}

/** `event` is the name of the event and its payload. */
std::string lineOf(const AddedThread& thread, int32_t pid, int64_t timeNs, const std::string& event,
                   const trace::MarkStyle& style) {
    // A hint may end between two times that the trace's decimals can express.
    int64_t unitNs = kNsPerSecond;
    for (int32_t i = 0; i < style.decimals; ++i)
        unitNs /= 10;
    const std::string process = style.hasProcess ? fmt::format("({:5}) ", pid) : "";
    return fmt::format("{}-{:<5} {}[000] {}{:5}.{:0{}}: {}\n",
                       padded(thread.name.empty() ? kUnknownTask : thread.name), thread.tid,
                       process, style.hasFlags ? ".... " : "", timeNs / kNsPerSecond,
                       timeNs % kNsPerSecond / unitNs, style.decimals, event);
}

/** Names the processes of a page, because viewers know no name of a process in a text. */
void writeProcessNames(const trace::TraceForm& form, int64_t timeNs, std::ostream& out) {
    for (const auto& [pid, name] : form.processes) {
        const auto thread = form.threads.find(pid);
        if (thread == form.threads.end()) continue;
        const std::string& task = thread->second.empty() ? kUnknownTask : thread->second;
        const std::string event = fmt::format(
                "task_rename: pid={} oldcomm={} newcomm={} oom_score_adj=0", pid, task, name);
        out << lineOf({pid, task}, pid, timeNs, event, form.style);
    }
}

}  // namespace

void writeTrace(trace::ByteSource& text, const std::string& path, const trace::Timeline& timeline,
                const trace::TraceForm& form, const replay::Recording& recording, std::ostream& out,
                const std::vector<AddedTrack>& tracks) {
    const AddedMarks added = addedMarks(recording, form, timeline.endNs, tracks);
    auto next = added.marks.begin();
    const auto writeNext = [&] {
        out << lineOf(added.threads[next->thread], form.compositorPid, next->timeNs,
                      form.style.event + ": " + payloadOf(*next, form), form.style);
        ++next;
    };
    int64_t timeNs = timeline.startNs;
    trace::LineReader lines(text, path);
    std::string_view line;
    bool isBeforeEvents = true;
    while (lines.next(&line)) {
        trace::EventLine event;
        const bool isEvent = trace::parseEventLine(line, &event);
        if (isEvent && isBeforeEvents) writeProcessNames(form, timeline.startNs, out);
        isBeforeEvents &= !isEvent;
        if (isEvent && event.timeNs > timeNs) {
            timeNs = event.timeNs;
            while (next != added.marks.end() && next->timeNs < timeNs)
                writeNext();
        }
        if (lines.isUnfinished()) break;
        out << line << '\n';
    }
    while (next != added.marks.end())
        writeNext();
    if (lines.isUnfinished()) out << line;
}

}  // namespace brevold::report
