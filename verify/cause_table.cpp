#include "verify/cause_table.h"

#include <algorithm>

namespace brevold::verify {

namespace {

constexpr size_t kShownTimes = 3;

}  // namespace

std::vector<CauseRow> causeTable(const std::vector<Difference>& differences) {
    std::vector<CauseRow> rows;
    for (const Difference& difference : differences) {
        auto row = std::find_if(rows.begin(), rows.end(), [&](const CauseRow& other) {
            return other.subject == difference.subject && other.causes == difference.causes;
        });
        if (row == rows.end()) {
            row = rows.insert(row, {difference.subject, difference.causes, 0, 0, {}});
        }
        ++row->count;
        row->earlyCount += difference.isEarly ? 1 : 0;
        if (row->firstTimesNs.size() < kShownTimes) row->firstTimesNs.push_back(difference.timeNs);
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const CauseRow& a, const CauseRow& b) { return a.count > b.count; });
    return rows;
}

}  // namespace brevold::verify
