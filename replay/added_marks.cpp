#include "replay/added_marks.h"

#include <algorithm>
#include <cmath>

#include "replay/hint_span.h"

namespace brevold::replay {

namespace {

constexpr size_t kCompositor = 0;
// The largest thread id that a kernel assigns.
constexpr int32_t kMaxThreadId = 1 << 22;

/** The names of a channel's tracks. */
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

class MarkBuilder {
  public:
    MarkBuilder(const trace::TraceForm& form, int64_t endNs) : mForm(form), mEndNs(endNs) {}

    AddedMarks build(const Recording& recording) {
        const auto known = mForm.threads.find(mForm.compositorTid);
        mAdded.threads.push_back(
                {mForm.compositorTid, known == mForm.threads.end() ? "" : known->second});
        addSections(recording);
        const std::vector<HintSpan> spans = hintSpans(recording.hints, mEndNs);
        for (const Channel channel : kChannels)
            addHints(spans, channel);
        std::stable_sort(
                mAdded.marks.begin(), mAdded.marks.end(),
                [](const AddedMark& a, const AddedMark& b) { return a.timeNs < b.timeNs; });
        return std::move(mAdded);
    }

  private:
    size_t addThread(const std::string& name) {
        do {
            ++mLastTid;
        } while (mForm.threads.count(mLastTid) != 0);
        mAdded.threads.push_back({mLastTid, name});
        return mAdded.threads.size() - 1;
    }

    void addSections(const Recording& recording) {
        std::vector<size_t> workers;
        for (const std::string& name : recording.threads)
            workers.push_back(addThread(name));
        for (const host::TraceMark& mark : recording.traceMarks) {
            const size_t thread =
                    mark.thread < 0 ? kCompositor : workers.at(static_cast<size_t>(mark.thread));
            if (mark.isBegin) {
                addBegin(mark.timeNs, thread, mark.label);
            } else {
                addEnd(mark.timeNs, thread);
            }
        }
    }

    void addHints(const std::vector<HintSpan>& spans, Channel channel) {
        const ChannelNames names = namesOf(channel);
        const size_t thread = addThread(names.thread);
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

    void addBegin(int64_t timeNs, size_t thread, const std::string& name) {
        mAdded.marks.push_back({timeNs, AddedMark::Kind::Begin, thread, name, 0});
    }

    void addEnd(int64_t timeNs, size_t thread) {
        mAdded.marks.push_back({timeNs, AddedMark::Kind::End, thread, "", 0});
    }

    void addCounter(int64_t timeNs, const char* name, int64_t value) {
        mAdded.marks.push_back({timeNs, AddedMark::Kind::Counter, kCompositor, name, value});
    }

    const trace::TraceForm& mForm;
    const int64_t mEndNs;
    int32_t mLastTid = kMaxThreadId;
    AddedMarks mAdded;
};

}  // namespace

AddedMarks addedMarks(const Recording& recording, const trace::TraceForm& form,
                      int64_t traceEndNs) {
    return MarkBuilder(form, traceEndNs).build(recording);
}

}  // namespace brevold::replay
