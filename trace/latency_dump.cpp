#include "trace/latency_dump.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "base/error.h"
#include "base/text.h"

namespace brevold::trace {
namespace {

constexpr int64_t kShortestPeriodNs = 1'000'000;
constexpr int64_t kLongestPeriodNs = 1'000'000'000;
/** Later ones are no times: differences have to fit into 64 bits. */
constexpr int64_t kLatestNs = 9'000'000'000'000'000'000;
constexpr int64_t kPending = std::numeric_limits<int64_t>::max();

struct Row {
    int64_t desiredNs;
    int64_t presentNs;
    int64_t readyNs;
};

bool parseRow(std::string_view line, Row* row) {
    for (int64_t* timeNs : {&row->desiredNs, &row->presentNs, &row->readyNs}) {
        line = trimStart(line);
        const std::string_view word = line.substr(0, line.find_first_of(kBlanks));
        if (!parseWhole(word, timeNs) || *timeNs < 0) return false;
        if (*timeNs > kLatestNs && *timeNs != kPending) return false;
        line.remove_prefix(word.size());
    }
    return line.empty();
}

bool isShown(const Row& row) {
    const auto isTime = [](int64_t timeNs) { return timeNs != 0 && timeNs != kPending; };
    return isTime(row.presentNs) && isTime(row.readyNs);
}

class DumpReader {
  public:
    DumpReader(std::istream& input, const std::string& path) : mLines(input, path), mPath(path) {}

    LatencyDump read(const std::string& layer) {
        const int64_t periodNs = readPeriodNs();
        readRows(periodNs);
        if (mSteps.empty()) throw InputError(mPath + ": no row tells of a frame that was shown");
        std::stable_sort(mSteps.begin(), mSteps.end(),
                         [](const Step& a, const Step& b) { return a.timeNs < b.timeNs; });
        mDump.startNs = mSteps.front().timeNs;
        mDump.endNs = mSteps.back().timeNs;
        add({mDump.startNs, Step::Latch}, "VSR-setPeriod", periodNs);
        addSteps(layer);
        return std::move(mDump);
    }

  private:
    struct Step {
        int64_t timeNs;
        enum { Ready, Latch, Present } kind;
    };

    int64_t readPeriodNs() {
        std::string_view line;
        int64_t periodNs = 0;
        while (periodNs == 0 && mLines.next(&line)) {
            const std::string_view word = trimEnd(line);
            if (!parseWhole(word, &periodNs)) continue;
            if (periodNs >= kShortestPeriodNs && periodNs <= kLongestPeriodNs) break;
            throw InputError(mPath + ":" + std::to_string(mLines.lineNumber()) +
                             ": expected a refresh period of 1000000 to 1000000000 ns, got '" +
                             std::string(word) + "'");
        }
        return periodNs;
    }

    void readRows(int64_t periodNs) {
        int64_t lastReadyNs = 0;
        for (std::string_view line; mLines.next(&line);) {
            line = trimEnd(line);
            if (line.empty()) continue;
            Row row;
            if (!parseRow(line, &row)) {
                mDump.strayRows.add(mLines.lineNumber());
                continue;
            }
            if (!isShown(row)) continue;
            if (row.readyNs < lastReadyNs) {
                mDump.backwardRows.add(mLines.lineNumber());
                continue;
            }
            lastReadyNs = row.readyNs;
            mSteps.push_back({row.readyNs, Step::Ready});
            // A fence can tell of the end of rendering late.
            mSteps.push_back({std::max(row.readyNs, row.presentNs - periodNs), Step::Latch});
            mSteps.push_back({std::max(row.readyNs, row.presentNs), Step::Present});
        }
        if (mLines.isCutShort()) {
            throw InputError(mPath + ":" + std::to_string(mLines.lineNumber() + 1) +
                             ": ends in the middle of a line; was the dump cut short?");
        }
    }

    void addSteps(const std::string& layer) {
        const std::string depthName = std::string(kBufferTx) + layer;
        int64_t depth = 0;
        int64_t vsyncs = 0;
        for (const Step& step : mSteps) {
            if (step.kind == Step::Present) {
                add(step, "VSYNC", vsyncs++ % 2);
            } else {
                depth += step.kind == Step::Ready ? 1 : -1;
                add(step, depthName, depth);
            }
        }
    }

    void add(const Step& step, std::string_view name, int64_t value) {
        mDump.marks.add({TraceMark::Kind::Counter, step.timeNs, 0, 0, name, value, ++mMarkNumber});
    }

    LineReader mLines;
    const std::string& mPath;
    std::vector<Step> mSteps;
    LatencyDump mDump;
    int64_t mMarkNumber = 0;
};

}  // namespace

LatencyDump readLatencyDump(std::istream& input, const std::string& path,
                            const std::string& layer) {
    return DumpReader(input, path).read(layer);
}

}  // namespace brevold::trace
