#include "trace/trace_marks.h"

#include <algorithm>

namespace brevold::trace {
namespace {

constexpr int8_t kNoSection = -1;

struct NamePattern {
    enum class Match : uint8_t { Whole, Prefix, Suffix } match;
    std::string_view text;
    CounterRole role;
};

using Match = NamePattern::Match;
constexpr NamePattern kNamePatterns[] = {
        {Match::Prefix, kBufferTx, CounterRole::BufferTx},
        {Match::Prefix, "VSYNC", CounterRole::Vsync},
        {Match::Prefix, "HW_VSYNC", CounterRole::Vsync},
        {Match::Whole, "VSR-setPeriod", CounterRole::SetPeriod},
        {Match::Prefix, "VSR-", CounterRole::Unrelated},
        {Match::Prefix, "VSP-", CounterRole::Unrelated},
        {Match::Suffix, " fps", CounterRole::Unrelated},
        {Match::Suffix, " duration", CounterRole::Unrelated},
        {Match::Prefix, "aq:", CounterRole::Unrelated},
        {Match::Prefix, "oq:", CounterRole::Unrelated},
        {Match::Prefix, "wq:", CounterRole::Unrelated},
        {Match::Whole, "iq", CounterRole::Unrelated},
        {Match::Suffix, "FrameMissed", CounterRole::Unrelated},
        {Match::Prefix, "PrevFrame", CounterRole::Unrelated},
        {Match::Whole, "TransactionQueue", CounterRole::Unrelated},
        {Match::Prefix, "FramebufferSurface", CounterRole::Unrelated},
        {Match::Prefix, "VirtualDisplaySurface", CounterRole::Unrelated},
};

bool matches(const NamePattern& pattern, std::string_view name) {
    const size_t length = pattern.text.size();
    if (name.size() < length) return false;
    switch (pattern.match) {
        case Match::Whole:
            return name == pattern.text;
        case Match::Prefix:
            return name.substr(0, length) == pattern.text;
        case Match::Suffix:
            return name.substr(name.size() - length) == pattern.text;
    }
    return false;
}

CounterRole roleOf(std::string_view name) {
    for (const NamePattern& pattern : kNamePatterns) {
        if (matches(pattern, name)) return pattern.role;
    }
    return CounterRole::Candidate;
}

int8_t sectionKindOf(std::string_view name) {
    const std::string_view word = name.substr(0, name.find(' '));
    const auto found = std::find(std::begin(kSectionNames), std::end(kSectionNames), word);
    return found == std::end(kSectionNames)
                   ? kNoSection
                   : static_cast<int8_t>(found - std::begin(kSectionNames));
}

/** The "name" of "name: <slot>"; empty for any other section. */
std::string_view slotOwner(std::string_view name) {
    const size_t last = name.find_last_not_of("0123456789");
    const bool isSlot = last != std::string_view::npos && last > 0 && last + 1 < name.size() &&
                        name[last] == ' ' && name[last - 1] == ':';
    return isSlot ? name.substr(0, last - 1) : std::string_view();
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
                    {mark.timeNs, mark.line, mark.value, static_cast<int32_t>(track), mark.tid});
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

    Thread& thread = mThreads[mark.tid];
    const int8_t kind = sectionKindOf(mark.name);
    if (kind != kNoSection) {
        // None of them holds itself: the end of the earlier one was lost.
        const auto lost = std::find(thread.nesting.begin(), thread.nesting.end(), kind);
        for (auto inner = lost; inner != thread.nesting.end(); ++inner) {
            if (*inner != kNoSection) thread.open.pop_back();
        }
        thread.nesting.erase(lost, thread.nesting.end());
        thread.open.push_back({kind, mark.pid, mark.tid, mark.timeNs, mark.line, 0, 0});
    }
    thread.nesting.push_back(kind);
}

void TraceMarks::end(const TraceMark& mark) {
    Thread& thread = mThreads[mark.tid];
    if (thread.nesting.empty()) return;
    const int8_t kind = thread.nesting.back();
    thread.nesting.pop_back();
    if (kind == kNoSection) return;

    Section section = thread.open.back();
    thread.open.pop_back();
    const bool isCommit = kind == kCommitSection;
    const bool isInner =
            std::any_of(thread.open.begin(), thread.open.end(), [isCommit](const Section& outer) {
                return (outer.kind == kCommitSection) == isCommit;
            });
    if (isInner) return;
    section.endNs = mark.timeNs;
    section.endLine = mark.line;
    mSections.push_back(section);
}

}  // namespace brevold::trace
