#include "replay/marked_trace.h"

#include <fmt/format.h>

#include <algorithm>

#include "replay/added_marks.h"
#include "trace/event_line.h"
#include "trace/line_reader.h"

namespace brevold::replay {

namespace {

constexpr int64_t kNsPerSecond = 1000000000;
constexpr size_t kTaskWidth = 16;
constexpr const char* kUnknownTask = "<...>";

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

std::string lineOf(const AddedMark& mark, const AddedThread& thread, const trace::TraceForm& form) {
    const trace::MarkStyle& style = form.style;
    // A hint may end between two times that the trace's decimals can express.
    int64_t unitNs = kNsPerSecond;
    for (int32_t i = 0; i < style.decimals; ++i)
        unitNs /= 10;
    const std::string process = style.hasProcess ? fmt::format("({:5}) ", form.compositorPid) : "";
    return fmt::format("{}-{:<5} {}[000] {}{:5}.{:0{}}: {}: {}\n",
                       padded(thread.name.empty() ? kUnknownTask : thread.name), thread.tid,
                       process, style.hasFlags ? ".... " : "", mark.timeNs / kNsPerSecond,
                       mark.timeNs % kNsPerSecond / unitNs, style.decimals, style.event,
                       payloadOf(mark, form));
}

}  // namespace

void writeTrace(trace::ByteSource& text, const std::string& path, const trace::Timeline& timeline,
                const trace::TraceForm& form, const Recording& recording, std::ostream& out) {
    const AddedMarks added = addedMarks(recording, form, timeline.endNs);
    auto next = added.marks.begin();
    const auto writeNext = [&] {
        out << lineOf(*next, added.threads[next->thread], form);
        ++next;
    };
    int64_t timeNs = timeline.startNs;
    trace::LineReader lines(text, path);
    std::string_view line;
    while (lines.next(&line)) {
        trace::EventLine event;
        if (trace::parseEventLine(line, &event) && event.timeNs > timeNs) {
            timeNs = event.timeNs;
            while (next != added.marks.end() && next->timeNs < timeNs)
                writeNext();
        }
        out << line << '\n';
    }
    while (next != added.marks.end())
        writeNext();
}

}  // namespace brevold::replay
