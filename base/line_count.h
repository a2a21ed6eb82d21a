#pragma once

#include <algorithm>
#include <cstdint>

namespace brevold {

/** Counts lines that share an oddity, and keeps the number of the first one. */
struct LineCount {
    int64_t lines = 0;
    int64_t firstLine = 0;

    void add(int64_t line) {
        if (lines++ == 0) firstLine = line;
    }
    void add(const LineCount& other) {
        if (other.lines == 0) return;
        firstLine = lines == 0 ? other.firstLine : std::min(firstLine, other.firstLine);
        lines += other.lines;
    }
};

}  // namespace brevold
