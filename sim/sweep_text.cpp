#include "sim/sweep_text.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

#include <algorithm>

#include "report/labels.h"
#include "sim/result_parts.h"

namespace brevold::sim {

namespace {

/** A row of a sweep. Without a reading it is library off. */
struct SweepRow {
    const SetupResult& result;
    const Reading* reading;
    const char* variant;
    const Estimates& estimates;
    std::optional<size_t> held;
};

enum class ColumnKind : uint8_t {
    Assumption,  // left out where it is the same in all rows
    Variant,
    Figure,
};

struct SweepColumn {
    const char* title;
    ColumnKind kind;
    std::string (*cell)(const SweepRow& row);
};

template <Metric kMetric>
std::string metricCell(const SweepRow& row) {
    return cell(row.estimates, kMetric);
}

constexpr char kNone[] = "-";

constexpr SweepColumn kSweepColumns[] = {
        {"governor", ColumnKind::Assumption,
         [](const SweepRow& r) -> std::string { return describeGovernor(r.result.setup.device); }},
        {"buffers", ColumnKind::Assumption,
         [](const SweepRow& r) { return std::to_string(r.result.setup.buffers()); }},
        {"DOWN", ColumnKind::Assumption,
         [](const SweepRow& r) -> std::string {
             return r.reading ? wordOf(r.reading->service.down, kDownWords) : kNone;
         }},
        {"UP", ColumnKind::Assumption,
         [](const SweepRow& r) -> std::string {
             return r.reading ? wordOf(r.reading->service.up, kUpWords) : kNone;
         }},
        {"boost", ColumnKind::Assumption,
         [](const SweepRow& r) -> std::string {
             return r.reading ? wordOf(r.reading->service.boost, kBoostWords) : kNone;
         }},
        {"depth", ColumnKind::Assumption,
         [](const SweepRow& r) -> std::string {
             return r.reading ? report::boostDepthWord(r.reading->boostDepth) : kNone;
         }},
        {"variant", ColumnKind::Variant,
         [](const SweepRow& r) -> std::string { return r.variant; }},
        {"energy", ColumnKind::Figure, metricCell<Metric::EnergyRatio>},
        {"missed/min", ColumnKind::Figure, metricCell<Metric::MissedPerMinute>},
        {"frames/s", ColumnKind::Figure, metricCell<Metric::FramesPerSecond>},
        {"latency, ms", ColumnKind::Figure, metricCell<Metric::ShowLatencyMs>},
        {"boosted, %", ColumnKind::Figure, metricCell<Metric::BoostShare>},
        {"held", ColumnKind::Figure,
         [](const SweepRow& r) { return r.reading ? heldText(r.result, r.held) : kNone; }},
        {"its energy", ColumnKind::Figure,
         [](const SweepRow& r) {
             return r.held ? cell(r.result.held[*r.held].estimates, Metric::EnergyRatio) : kNone;
         }},
};

std::vector<SweepRow> sweepRows(const std::vector<SetupResult>& results) {
    std::vector<SweepRow> rows;
    for (const SetupResult& result : results) {
        rows.push_back({result, nullptr, "library off", result.off, {}});
        for (const ReadingResult& reading : result.readings) {
            const auto add = [&](const char* name, const VariantResult& variant) {
                rows.push_back(
                        {result, &reading.reading, name, variant.estimates, variant.equalHeld});
            };
            add("as given", reading.given);
            if (reading.vs) add("--vs", *reading.vs);
        }
    }
    return rows;
}

/** Rows with library off have no reading. */
bool isConstant(const SweepColumn& column, const std::vector<SweepRow>& rows) {
    return std::all_of(rows.begin(), rows.end(), [&](const SweepRow& row) {
        return !row.reading || column.cell(row) == column.cell(rows[1]);
    });
}

std::string describeConstants(const std::vector<SweepRow>& rows) {
    std::vector<std::string> constants;
    for (const SweepColumn& column : kSweepColumns) {
        if (column.kind != ColumnKind::Assumption || !isConstant(column, rows)) continue;
        constants.push_back(fmt::format("{} {}", column.title, column.cell(rows[1])));
    }
    return fmt::format("{}", fmt::join(constants, ", "));
}

using Table = std::vector<std::vector<std::string>>;

size_t displayWidth(const std::string& utf8) {
    return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
        const bool continues = (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
        return !continues;
    }));
}

/** Aligns the first `words` columns to the left, the others to the right. */
void printTable(const Table& table, size_t words, std::ostream& out) {
    std::vector<size_t> widths(table.front().size());
    for (const std::vector<std::string>& row : table) {
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(row[i]));
    }
    for (const std::vector<std::string>& row : table) {
        for (size_t i = 0; i < row.size(); ++i) {
            const std::string padding(widths[i] - displayWidth(row[i]), ' ');
            out << (i == 0 ? "" : "  ") << (i < words ? row[i] + padding : padding + row[i]);
        }
        out << '\n';
    }
}

}  // namespace

void printSweep(const std::vector<SetupResult>& results, const ExperimentOptions& options,
                std::ostream& out) {
    const std::vector<SweepRow> rows = sweepRows(results);
    printWorkload(results, options, out);
    fmt::print(out, "all rows    {}\n", describeConstants(rows));
    fmt::print(out,
               "energy      of both clusters, as a share of library off with the same governor and "
               "buffers\n"
               "latency     from the start of a frame to its display\n"
               "held        lowest operating point of cluster {} that, held without the library, "
               "misses no more vsyncs\n"
               "            and shows as many frames (within 0.5 %), and its energy\n\n",
               appCluster(results.front()).name);
    Table table(rows.size() + 1);
    size_t words = 0;
    for (const SweepColumn& column : kSweepColumns) {
        if (column.kind == ColumnKind::Assumption && isConstant(column, rows)) continue;
        table.front().emplace_back(column.title);
        if (column.kind != ColumnKind::Figure) words = table.front().size();
        for (size_t i = 0; i < rows.size(); ++i)
            table[i + 1].push_back(column.cell(rows[i]));
    }
    printTable(table, words, out);
}

}  // namespace brevold::sim
