#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <list>
#include <vector>

#include "trace/trace_point.h"

namespace brevold::trace {

/** A change of a counter. A trace may have millions, so it has no field that could be derived. */
struct CounterChange {
    int64_t timeNs;
    int64_t line;
    int32_t tid;
    int32_t value;  // clamped to 32 bits

    TracePoint at() const { return {timeNs, line, tid}; }
};

/**
 * The changes of a counter, in the order of time; the first is the first value. They are in blocks:
 * a list that grows copies none, and a list that shrinks frees them early.
 */
class ChangeList {
  public:
    void add(const CounterChange& change) {
        if (mBlocks.empty() || mBlocks.back().size() == mBlocks.back().capacity()) addBlock();
        mBlocks.back().push_back(change);
        ++mSize;
    }

    size_t size() const { return mSize; }
    bool isEmpty() const { return mSize == 0; }

    template <typename Visit>
    void forEach(Visit visit) const {
        size_t first = mTaken;
        for (const std::vector<CounterChange>& block : mBlocks) {
            for (size_t i = first; i < block.size(); ++i)
                visit(block[i]);
            first = 0;
        }
    }

    /** Removes the first change and returns it. The list must not be empty. */
    CounterChange takeFirst() {
        const CounterChange change = mBlocks.front()[mTaken++];
        if (mTaken == mBlocks.front().size()) {
            mBlocks.pop_front();
            mTaken = 0;
        }
        --mSize;
        return change;
    }

  private:
    void addBlock() {
        // Most counters of a trace have few changes.
        constexpr size_t kMaxBlock = 1024;
        mBlocks.emplace_back();
        mBlocks.back().reserve(std::clamp<size_t>(mSize, 1, kMaxBlock));
    }

    std::list<std::vector<CounterChange>> mBlocks;
    size_t mSize = 0;
    size_t mTaken = 0;  // from the first block
};

}  // namespace brevold::trace
