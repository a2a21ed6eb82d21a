#include "replay/marked_trace.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>

#include "base/text.h"
#include "replay/hint_span.h"
#include "trace/event_line.h"
#include "trace/line_reader.h"

namespace brevold::replay {

namespace {

constexpr int64_t kNsPerSecond = 1000000000;
constexpr size_t kTaskWidth = 16;
// No kernel gives a thread a larger id.
constexpr int32_t kLargestThreadId = 1 << 22;

struct AddedLine {
    int64_t timeNs;
    std::string text;
};

struct Thread {
    int32_t tid;
    std::string name;
};

struct ChannelText {
    const char* thread;
    const char* counter;
};

ChannelText textOf(Channel channel) {
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

class LineMaker {
  public:
    LineMaker(const trace::TraceForm& form, int64_t endNs) : mForm(form), mEndNs(endNs) {}

    std::vector<AddedLine> make(const Recording& recording) {
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
        const ChannelText text = textOf(channel);
        const Thread thread = newThread(text.thread);
        const HintSpan* last = nullptr;
        for (const HintSpan& span : spans) {
            if (channelOf(span.hint.kind) != channel) continue;
            if (last != nullptr && last->endNs < span.hint.timeNs) {
                addCounter(last->endNs, text.counter, 0);
            }
            addCounter(span.hint.timeNs, text.counter, counterValueOf(span.hint));
            addBegin(span.hint.timeNs, thread, host::describe(span.hint));
            addEnd(span.endNs, thread);
            last = &span;
        }
        if (last != nullptr && last->endNs < mEndNs) {
            addCounter(last->endNs, text.counter, 0);
        }
    }

    void addBegin(int64_t timeNs, const Thread& thread, const std::string& name) {
        add(timeNs, thread, format("B|%d|", mForm.compositorPid) + name);
    }

    void addEnd(int64_t timeNs, const Thread& thread) {
        add(timeNs, thread, mForm.style.endHasProcess ? format("E|%d", mForm.compositorPid) : "E");
    }

    void addCounter(int64_t timeNs, const char* name, int64_t value) {
        add(timeNs, mCompositor, format("C|%d|%s|%" PRId64, mForm.compositorPid, name, value));
    }

    void add(int64_t timeNs, const Thread& thread, const std::string& mark) {
        const trace::MarkStyle& style = mForm.style;
        // The end of a hint may lie between the times that the trace can write.
        int64_t unitNs = kNsPerSecond;
        for (int32_t i = 0; i < style.decimals; ++i)
            unitNs /= 10;
        const size_t width = std::max(thread.name.size(), kTaskWidth);
        std::string line = std::string(width - thread.name.size(), ' ') + thread.name +
                           format("-%-5d ", thread.tid);
        if (style.hasProcess) line += format("(%5d) ", mForm.compositorPid);
        line += style.hasFlags ? "[000] .... " : "[000] ";
        line += format("%5" PRId64 ".%0*" PRId64 ": ", timeNs / kNsPerSecond, style.decimals,
                       timeNs % kNsPerSecond / unitNs);
        mLines.push_back({timeNs, line + style.event + ": " + mark + "\n"});
    }

    const trace::TraceForm& mForm;
    const int64_t mEndNs;
    Thread mCompositor;
    int32_t mLastTid = kLargestThreadId;
    std::vector<AddedLine> mLines;
};

}  // namespace

void writeTrace(trace::ByteSource& text, const std::string& path, const trace::Timeline& timeline,
                const trace::TraceForm& form, const Recording& recording, std::ostream& out) {
    const std::vector<AddedLine> added = LineMaker(form, timeline.endNs).make(recording);
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
