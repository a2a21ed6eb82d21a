#include "trace/trace_marks.h"

#include <algorithm>

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
        case TraceMark::Kind::Counter: {
            const size_t track = trackOf(mark.pid, mark.name);
            if (mTracks[track].role == CounterRole::Unrelated) break;
            mCounters.push_back(
                    {{mark.timeNs, mark.line, mark.tid}, mark.value, static_cast<int32_t>(track)});
            break;
        }
    }
}

size_t TraceMarks::trackOf(int32_t pid, std::string_view name) {
    const auto found = mTrackIndices.find({pid, name});
    if (found != mTrackIndices.end()) return found->second;
    mTracks.push_back({pid, std::string(name), roleOf(name), false});
    mTrackIndices.insert({{pid, mTracks.back().name}, mTracks.size() - 1});
    return mTracks.size() - 1;
}

void TraceMarks::begin(const TraceMark& mark) {
    const std::string_view owner = slotOwner(mark.name);
    if (!owner.empty()) mTracks[trackOf(mark.pid, owner)].hasSlots = true;

    auto& [nesting, open] = mThreads[mark.tid];
    const std::optional<CompositionSource> kind = compositionOf(mark.name);
    if (kind) {
        // Such a section does not contain itself: the trace lost the end of the earlier one.
        const auto lost = std::find(nesting.begin(), nesting.end(), kind);
        open.erase(open.end() - std::count_if(lost, nesting.end(),
                                              [](const auto& inner) { return inner.has_value(); }),
                   open.end());
        nesting.erase(lost, nesting.end());
        open.push_back({*kind, mark.pid, {mark.timeNs, mark.line, mark.tid}, {}});
    }
    nesting.push_back(kind);
}

void TraceMarks::end(const TraceMark& mark) {
    auto& [nesting, open] = mThreads[mark.tid];
    if (nesting.empty()) return;
    const bool isComposition = nesting.back().has_value();
    nesting.pop_back();
    if (!isComposition) return;

    Section section = open.back();
    open.pop_back();
    const bool isInner = std::any_of(open.begin(), open.end(), [&section](const Section& outer) {
        return outer.isCommit() == section.isCommit();
    });
    if (isInner) return;
    section.end = {mark.timeNs, mark.line, mark.tid};
    mSections.push_back(section);
}

}  // namespace brevold::trace
