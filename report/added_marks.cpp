#include "report/added_marks.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "replay/hint_span.h"

namespace brevold::report {

namespace {

constexpr size_t kCompositor = 0;
// The largest thread id that a kernel assigns.
constexpr int32_t kMaxThreadId = 1 << 22;

/** The names of a channel's tracks. */
struct ChannelNames {
    const char* thread;
    const char* counter;
};

ChannelNames namesOf(replay::Channel channel) {
    switch (channel) {
        case replay::Channel::Qb:
            return {"hints QB", "hint scale x1000"};
        case replay::Channel::Sf:
            return {"hints SF", "hint boost"};
        case replay::Channel::Display:
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

/** Returns true if the trace has marks of the library, recorded or from an earlier replay. */
bool hasLibraryMarks(const trace::TraceForm& form, const replay::Recording& recording) {
    std::vector<std::string> names = recording.threads;
    for (const replay::Channel channel : replay::kChannels)
        names.push_back(namesOf(channel).thread);
    return form.hasLibraryMarks ||
           std::any_of(form.threads.begin(), form.threads.end(), [&](const auto& thread) {
               return std::count(names.begin(), names.end(), thread.second) != 0;
           });
}

class MarkBuilder {
  public:
    MarkBuilder(const replay::Recording& recording, const trace::TraceForm& form, int64_t endNs,
                const std::vector<AddedTrack>& tracks)
          : mRecording(recording),
            mForm(form),
            mEndNs(endNs),
            mTracks(tracks),
            mIsMarked(hasLibraryMarks(form, recording)) {}

    AddedMarks build() {
        mAdded.threads.push_back({mForm.compositorTid, nameOf(mForm.compositorTid)});
        addSections();
        const std::vector<replay::HintSpan> spans = replay::hintSpans(mRecording.hints, mEndNs);
        for (const replay::Channel channel : replay::kChannels)
            addHints(spans, channel);
        for (const AddedTrack& track : mTracks)
            addTrack(track);
        std::stable_sort(
                mAdded.marks.begin(), mAdded.marks.end(),
                [](const AddedMark& a, const AddedMark& b) { return a.timeNs < b.timeNs; });
        return std::move(mAdded);
    }

  private:
    std::string nameOf(int32_t tid) const {
        const auto thread = mForm.threads.find(tid);
        return thread == mForm.threads.end() ? "" : thread->second;
    }

    std::string trackName(const std::string& name) const {
        return mIsMarked ? name + std::string(trace::kReplayedSuffix) : name;
    }

    size_t addThread(const std::string& name) { return addNamedThread(trackName(name)); }

    size_t addNamedThread(const std::string& name) {
        do {
            ++mLastTid;
        } while (mForm.threads.count(mLastTid) != 0);
        mAdded.threads.push_back({mLastTid, name});
        return mAdded.threads.size() - 1;
    }

    /** Returns the thread of marks that the library made on a thread of the trace. */
    size_t callerThread(int32_t tid) {
        if (tid == 0) tid = mForm.compositorTid;
        if (!mIsMarked && tid == mForm.compositorTid) return kCompositor;
        const auto [caller, isNew] = mCallers.emplace(tid, mAdded.threads.size());
        if (!isNew) return caller->second;
        const std::string name = nameOf(tid);
        if (mIsMarked) return addThread(name.empty() ? std::to_string(tid) : name);
        mAdded.threads.push_back({tid, name});
        return caller->second;
    }

    void addSections() {
        std::vector<size_t> workers;
        for (const std::string& name : mRecording.threads)
            workers.push_back(addThread(name));
        for (const auto& [mark, callerTid] : mRecording.marks) {
            const size_t thread = mark.thread < 0 ? callerThread(callerTid)
                                                  : workers.at(static_cast<size_t>(mark.thread));
            if (mark.isBegin) {
                addBegin(mark.timeNs, thread, mark.label);
            } else {
                addEnd(mark.timeNs, thread);
            }
        }
    }

    void addHints(const std::vector<replay::HintSpan>& spans, replay::Channel channel) {
        const ChannelNames names = namesOf(channel);
        const size_t thread = addThread(names.thread);
        const std::string counter = trackName(names.counter);
        const replay::HintSpan* last = nullptr;
        for (const replay::HintSpan& span : spans) {
            if (replay::channelOf(span.hint.kind) != channel) continue;
            if (last != nullptr && last->endNs < span.hint.timeNs) {
                addCounter(last->endNs, counter, 0);
            }
            addCounter(span.hint.timeNs, counter, counterValueOf(span.hint));
            addBegin(span.hint.timeNs, thread, host::describe(span.hint));
            addEnd(span.endNs, thread);
            last = &span;
        }
        if (last != nullptr && last->endNs < mEndNs) {
            addCounter(last->endNs, counter, 0);
        }
    }

    void addTrack(const AddedTrack& track) {
        const size_t thread = addNamedThread(track.name);
        for (const AddedTrack::Section& section : track.sections) {
            addBegin(section.beginNs, thread, section.name);
            addEnd(section.endNs, thread);
        }
    }

    void addBegin(int64_t timeNs, size_t thread, const std::string& name) {
        mAdded.marks.push_back({timeNs, AddedMark::Kind::Begin, thread, name, 0});
    }

    void addEnd(int64_t timeNs, size_t thread) {
        mAdded.marks.push_back({timeNs, AddedMark::Kind::End, thread, "", 0});
    }

    void addCounter(int64_t timeNs, const std::string& name, int64_t value) {
        mAdded.marks.push_back({timeNs, AddedMark::Kind::Counter, kCompositor, name, value});
    }

    const replay::Recording& mRecording;
    const trace::TraceForm& mForm;
    const int64_t mEndNs;
    const std::vector<AddedTrack>& mTracks;
    const bool mIsMarked;
    int32_t mLastTid = kMaxThreadId;
    std::map<int32_t, size_t> mCallers;  // indices of their threads, by their ids in the trace
    AddedMarks mAdded;
};

}  // namespace

AddedMarks addedMarks(const replay::Recording& recording, const trace::TraceForm& form,
                      int64_t traceEndNs, const std::vector<AddedTrack>& tracks) {
    return MarkBuilder(recording, form, traceEndNs, tracks).build();
}

}  // namespace brevold::report
