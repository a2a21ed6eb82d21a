#include "trace/library_sections.h"

#include <algorithm>
#include <iterator>

namespace brevold::trace {
namespace {

constexpr std::string_view kLabelStarts[] = {"[DOWN_SCALING]", "[UP_SCALING]", "energyScaling[",
                                             "[FM]gMode:"};

}  // namespace

bool isLibraryLabel(std::string_view label) {
    return std::any_of(
            std::begin(kLabelStarts), std::end(kLabelStarts),
            [&](std::string_view start) { return label.substr(0, start.size()) == start; });
}

void LibrarySections::add(const TraceMark& mark) {
    if (mark.kind == TraceMark::Kind::Counter) return;
    Thread& thread = mThreads[mark.tid];
    if (mark.kind == TraceMark::Kind::Begin) {
        if (isLibraryLabel(mark.name)) {
            thread.isLibrarys = true;
            thread.open.emplace_back(thread.level, mSections.size());
            mSections.push_back({mark.timeNs, {}, mark.pid, mark.tid, std::string(mark.name)});
        }
        ++thread.level;
        return;
    }
    if (thread.level == 0) {
        ++thread.endsWithoutBegin;
        return;
    }
    --thread.level;
    if (thread.open.empty() || thread.open.back().first != thread.level) return;
    LibrarySection& section = mSections[thread.open.back().second];
    section.endNs = std::max(section.beginNs, mark.timeNs);
    thread.open.pop_back();
}

std::vector<LibrarySection> LibrarySections::take() {
    const auto isEarlier = [](const LibrarySection& a, const LibrarySection& b) {
        return a.beginNs < b.beginNs;
    };
    // Sections of most traces are in order, and a sort would move them all.
    if (!std::is_sorted(mSections.begin(), mSections.end(), isEarlier)) {
        std::stable_sort(mSections.begin(), mSections.end(), isEarlier);
    }
    return std::move(mSections);
}

int64_t LibrarySections::endsWithoutBegin() const {
    int64_t ends = 0;
    for (const auto& [tid, thread] : mThreads) {
        if (thread.isLibrarys) ends += thread.endsWithoutBegin;
    }
    return ends;
}

}  // namespace brevold::trace
