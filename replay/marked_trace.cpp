#include "replay/marked_trace.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "replay/hint_span.h"
#include "trace/event_line.h"
#include "trace/line_reader.h"

namespace brevold::replay {

namespace {

constexpr int64_t kNsPerSecond = 1000000000;
constexpr size_t kTaskWidth = 16;
// The largest thread id that a kernel assigns.
constexpr int32_t kMaxThreadId = 1 << 22;

struct AddedLine {
    int64_t timeNs;
    std::string text;
};

struct Thread {
    int32_t tid;
    std::string name;
};

/** The names of a channel's track. */
struct ChannelNames {
    const char* thread;
    const char* counter;
};

ChannelNames namesOf(Channel channel) {
    switch (channel) {
        case Channel::Qb:
            return {"hints QB", "hint scale x1000"};
        case Channel::Sf:
            return {"hints SF", "hint boost"};
        case Channel::Display:
            return {"hints rate", "hint refresh rate"};
    }
    return {"", ""};
}

int64_t counterValueOf(const host::Hint& hint) {
    switch (hint.kind) {
        case host::HintKind::Down:
        case host::HintKind::Up:
            return std::lround(hint.scale * 1000);
        case host::HintKind::JankBoost:
            return 1;
        case host::HintKind::Release:
            return 0;
        case host::HintKind::RefreshRate:
            return hint.type;
    }
    return 0;
}

/** Pads to a width in bytes, as the kernel does. */
std::string padded(const std::string& task) {
    return std::string(kTaskWidth - std::min(task.size(), kTaskWidth), ' ') + task;
}

class LineBuilder {
  public:
    LineBuilder(const trace::TraceForm& form, int64_t endNs) : mForm(form), mEndNs(endNs) {}

    std::vector<AddedLine> build(const Recording& recording) {
        const auto known = mForm.threads.find(mForm.compositorTid);
        mCompositor = {mForm.compositorTid, known == mForm.threads.end() || known->second.empty()
                                                    ? "<...>"
                                                    : known->second};
        addSections(recording);
        const std::vector<HintSpan> spans = hintSpans(recording.hints, mEndNs);
        for (const Channel channel : kChannels)
            addHints(spans, channel);
        std::stable_sort(mLines.begin(), mLines.end(), [](const AddedLine& a, const AddedLine& b) {
            return a.timeNs < b.timeNs;
        });
        return std::move(mLines);
    }

  private:
    Thread newThread(const std::string& name) {
        do {
            ++mLastTid;
        } while (mForm.threads.count(mLastTid) != 0);
        return {mLastTid, name};
    }

    void addSections(const Recording& recording) {
        std::vector<Thread> workers;
        for (const std::string& name : recording.threads)
            workers.push_back(newThread(name));
        for (const host::TraceMark& mark : recording.traceMarks) {
            const Thread& thread =
                    mark.thread < 0 ? mCompositor : workers.at(static_cast<size_t>(mark.thread));
            if (mark.isBegin) {
                addBegin(mark.timeNs, thread, mark.label);
            } else {
                addEnd(mark.timeNs, thread);
            }
        }
    }

    void addHints(const std::vector<HintSpan>& spans, Channel channel) {
        const ChannelNames names = namesOf(channel);
        const Thread thread = newThread(names.thread);
        const HintSpan* last = nullptr;
        for (const HintSpan& span : spans) {
            if (channelOf(span.hint.kind) != channel) continue;
            if (last != nullptr && last->endNs < span.hint.timeNs) {
                addCounter(last->endNs, names.counter, 0);
            }
            addCounter(span.hint.timeNs, names.counter, counterValueOf(span.hint));
            addBegin(span.hint.timeNs, thread, host::describe(span.hint));
            addEnd(span.endNs, thread);
            last = &span;
        }
        if (last != nullptr && last->endNs < mEndNs) {
            addCounter(last->endNs, names.counter, 0);
        }
    }

    void addBegin(int64_t timeNs, const Thread& thread, const std::string& name) {
        add(timeNs, thread, fmt::format("B|{}|{}", mForm.compositorPid, name));
    }

    void addEnd(int64_t timeNs, const Thread& thread) {
        add(timeNs, thread,
            mForm.style.endHasProcess ? fmt::format("E|{}", mForm.compositorPid) : "E");
    }

    void addCounter(int64_t timeNs, const char* name, int64_t value) {
        add(timeNs, mCompositor, fmt::format("C|{}|{}|{}", mForm.compositorPid, name, value));
    }

    void add(int64_t timeNs, const Thread& thread, const std::string& mark) {
        const trace::MarkStyle& style = mForm.style;
        // A hint may end between two times that the trace's decimals can express.
        int64_t unitNs = kNsPerSecond;
        for (int32_t i = 0; i < style.decimals; ++i)
            unitNs /= 10;
        const std::string process =
                style.hasProcess ? fmt::format("({:5}) ", mForm.compositorPid) : "";
        mLines.push_back({timeNs, fmt::format("{}-{:<5} {}[000] {}{:5}.{:0{}}: {}: {}\n",
                                              padded(thread.name), thread.tid, process,
                                              style.hasFlags ? ".... " : "", timeNs / kNsPerSecond,
                                              timeNs % kNsPerSecond / unitNs, style.decimals,
                                              style.event, mark)});
    }

    const trace::TraceForm& mForm;
    const int64_t mEndNs;
    Thread mCompositor;
    int32_t mLastTid = kMaxThreadId;
    std::vector<AddedLine> mLines;
};

}  // namespace

void writeTrace(trace::ByteSource& text, const std::string& path, const trace::Timeline& timeline,
                const trace::TraceForm& form, const Recording& recording, std::ostream& out) {
    const std::vector<AddedLine> added = LineBuilder(form, timeline.endNs).build(recording);
    auto next = added.begin();
    int64_t timeNs = timeline.startNs;
    trace::LineReader lines(text, path);
    std::string_view line;
    while (lines.next(&line)) {
        trace::EventLine event;
        if (trace::parseEventLine(line, &event) && event.timeNs > timeNs) {
            timeNs = event.timeNs;
            for (; next != added.end() && next->timeNs < timeNs; ++next)
                out << next->text;
        }
        out << line << '\n';
    }
    for (; next != added.end(); ++next)
        out << next->text;
}

}  // namespace brevold::replay
