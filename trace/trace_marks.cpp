#include "trace/trace_marks.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace brevold::trace {
namespace {

/** The names of the compositor's sections, alone or followed by an argument. */
constexpr std::pair<std::string_view, CompositionSource> kSections[] = {
        {"onMessageRefresh", CompositionSource::OnMessageRefresh},
        {"handleMessageRefresh", CompositionSource::HandleMessageRefresh},
        {"composite", CompositionSource::Composite},
        {"postFramebuffer", CompositionSource::PostFramebuffer},
        {"commit", CompositionSource::Commit},
};

std::optional<CompositionSource> compositionOf(std::string_view section) {
    const std::string_view word = section.substr(0, section.find(' '));
    for (const auto& [name, source] : kSections) {
        if (name == word) return source;
    }
    return {};
}

/**
 * Returns true if a section of one kind is never inside one of the other. Each frame has a commit,
 * then a composite section.
 */
bool excludeEachOther(CompositionSource a, CompositionSource b) {
    const auto isPart = [](CompositionSource kind) {
        return kind == CompositionSource::Commit || kind == CompositionSource::Composite;
    };
    return a == b || (isPart(a) && isPart(b));
}

/** Returns the "name" of a section "name: <slot>", or an empty text for any other section. */
std::string_view slotOwner(std::string_view section) {
    const size_t last = section.find_last_not_of("0123456789");
    const bool isSlot = last != std::string_view::npos && last > 0 && last + 1 < section.size() &&
                        section[last] == ' ' && section[last - 1] == ':';
    return isSlot ? section.substr(0, last - 1) : std::string_view();
}

}  // namespace

void TraceMarks::add(const TraceMark& mark) {
    switch (mark.kind) {
        case TraceMark::Kind::Begin:
            begin(mark);
            break;
        case TraceMark::Kind::End:
            end(mark);
            break;
        case TraceMark::Kind::Counter:
            addValue(mark);
            break;
    }
}

void TraceMarks::addValue(const TraceMark& mark) {
    using Limits = std::numeric_limits<int32_t>;
    CounterTrack& track = mTracks[trackOf(mark.pid, mark.name)];
    if (track.role == CounterRole::Unrelated) return;
    if (track.values++ > 0 && track.lastValue == mark.value) return;
    track.lastValue = mark.value;
    const int64_t value = std::clamp<int64_t>(mark.value, Limits::min(), Limits::max());
    track.changes.add({mark.timeNs, mark.line, mark.tid, static_cast<int32_t>(value)});
}

size_t TraceMarks::trackOf(int32_t pid, std::string_view name) {
    const auto found = mTrackIndices.find({pid, name});
    if (found != mTrackIndices.end()) return found->second;
    mTracks.push_back({pid, std::string(name), roleOf(name), false, 0, 0, {}});
    mTrackIndices.insert({{pid, mTracks.back().name}, mTracks.size() - 1});
    return mTracks.size() - 1;
}

void TraceMarks::begin(const TraceMark& mark) {
    const std::string_view owner = slotOwner(mark.name);
    if (!owner.empty()) mTracks[trackOf(mark.pid, owner)].hasSlots = true;

    Thread& thread = mThreads[mark.tid];
    if (const std::optional<CompositionSource> kind = compositionOf(mark.name)) {
        const TracePoint at = {mark.timeNs, mark.line, mark.tid};
        const auto lost =
                std::find_if(thread.open.begin(), thread.open.end(), [&](const OpenSection& outer) {
                    return excludeEachOther(outer.section.kind, *kind);
                });
        if (lost != thread.open.end()) {
            const size_t level = lost->level;
            while (!thread.open.empty() && thread.open.back().level >= level)
                closeInnermost(thread, at);
            thread.level = level;
        }
        thread.open.push_back({{*kind, mark.pid, at, {}}, thread.level});
    }
    ++thread.level;
}

void TraceMarks::end(const TraceMark& mark) {
    Thread& thread = mThreads[mark.tid];
    if (thread.level == 0) return;
    --thread.level;
    if (!thread.open.empty() && thread.open.back().level == thread.level) {
        closeInnermost(thread, {mark.timeNs, mark.line, mark.tid});
    }
}

void TraceMarks::closeInnermost(Thread& thread, TracePoint end) {
    Section section = thread.open.back().section;
    thread.open.pop_back();
    const bool isInner = std::any_of(thread.open.begin(), thread.open.end(),
                                     [&section](const OpenSection& outer) {
                                         return outer.section.isCommit() == section.isCommit();
                                     });
    if (isInner) return;
    section.end = end;
    mSections.push_back(section);
}

}  // namespace brevold::trace
