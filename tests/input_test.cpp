// From the bytes of an input to its trace: formats, archives, limits and incomplete texts.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>

#include "base/error.h"
#include "base/text.h"
#include "host/device_profile.h"
#include "replay/isolated_play.h"
#include "report/hints_csv.h"
#include "report/labels.h"
#include "tests/gzip.h"
#include "tests/pages.h"
#include "tests/proto_writer.h"
#include "tests/rest.h"
#include "tests/zip.h"
#include "trace/event_line.h"
#include "trace/gzip_source.h"
#include "trace/read_timeline.h"
#include "trace/string_source.h"

namespace brevold::trace {
namespace {

using namespace std::string_literals;

const std::string kName = "trace";
constexpr size_t kWhole = std::string::npos;

const std::string kByteOrderMark = "\xef\xbb\xbf";
const std::string kReportFolder = "FS/data/misc/perfetto-traces/";

/** A trace of one layer, process 90, in which a frame is queued at 1.001 and at 1.018 s. */
const std::string kText =
        "# tracer: nop\n"
        "a-91 [000] 1.001: 0: C|90|BufferTX - a|1\n"
        "a-90 [000] 1.010: 0: C|90|BufferTX - a|0\n"
        "a-91 [000] 1.018: 0: C|90|BufferTX - a|1\n";
const std::string kRows = "16666666\n1000000\t40000000\t2000000\n3000000\t60000000\t7000000\n";

std::string atrace(const std::string& text) {
    return "capturing trace... done\nTRACE:\n" + test::zlib(text);
}

/** A trace with one bundle. */
std::string perfetto(const std::string& text) {
    std::vector<test::Proto> events;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EventLine event;
        if (!parseEventLine(line, &event)) continue;
        takeUntil(':', &event.event);
        events.push_back(test::ftraceEvent(static_cast<uint64_t>(event.timeNs), event.tid,
                                           std::string(trimStart(event.event))));
    }
    return test::packet(test::ftraceBundle(events));
}

TraceInput inputOf(const std::string& bytes, size_t maxRead = kWhole,
                   const std::string& member = {}) {
    return {std::make_unique<StringSource>(bytes, maxRead), kName, member};
}

/** The message of an error without the name. */
template <typename Function>
std::string errorOf(Function&& function) {
    try {
        function();
    } catch (const InputError& error) {
        return std::string(error.what()).substr(kName.size());
    }
    return "no error";
}

TEST(InputTest, FindsTheTraceInEveryFormat) {
    const std::string text = kText + "a-90 [000] 2.0: 0: B|90|composite \"1\\2\"\n";
    std::string longText = text;
    for (int i = 1; i <= 20'000; ++i)
        longText += fmt::format("a-{} [000] 2.0: 0: C|90|a|{}\n", 90 + i % 2, i % 2);
    const std::string script = "if(!/^var linuxPerfData = \"\\\\$/.test(line))return \"a-b\";";
    const std::string unclosed = "<script class=\"trace-data\"" + std::string(100'000, ' ');
    const std::vector<size_t> small = {1, 2, 3, 7, 64, kWhole};
    const std::vector<size_t> large = {4096, kWhole};
    const struct {
        const char* what;
        std::string bytes;
        std::string text;
        std::vector<size_t> maxReads;
    } cases[] = {
            {"text", text, text, small},
            {"byte-order mark", kByteOrderMark + text, text, small},
            {"latency dump with a byte-order mark", kByteOrderMark + kRows, kRows, small},
            {"old page", oldPageOf(text), text, small},
            {"page with a byte-order mark", kByteOrderMark + oldPageOf(text), text, small},
            {"two pages", pageOf(text) + pageOf(text), text + text, small},
            {"page whose script looks for the string", pageOf(text, script), text, small},
            {"page with a tag that is not closed", "<html>" + unclosed + pageOf(text), text, small},
            {"long page", pageOf(longText, std::string(300'000, 'x')), longText, large},
            {"gzip", gzip(text), text, small},
            {"gzip of two members and padding", gzip(text) + gzip(text) + "0", text + text, small},
            {"gzip of an old page", gzip(oldPageOf(text)), text, small},
            {"gzip of a long page", gzip(pageOf(longText)), longText, large},
            {"gzip of a text with a byte-order mark", gzip(kByteOrderMark + text), text, small},
            {"atrace -z", atrace(text), text, small},
            {"atrace -z without other lines", "TRACE:\r\n" + test::zlib(text), text, small},
            {"gzip of atrace -z", gzip(atrace(text)), text, small},
            {"zip", zipOf({{"a", text}}), text, small},
            {"zip of a page among other files",
             zipOf({{"folder/", ""},
                    {"a.png", "\x89PNG\0"s},
                    {"read.me", "a"},
                    {"b", pageOf(text)}}),
             text, small},
            {"zip of gzip among other files", zipOf({{"read.me", "a"}, {"b", gzip(text)}}), text,
             small},
            {"bug report",
             zipOf({{"version.txt", "2.0"}, {"systrace.txt", kText}, {kReportFolder + "a", text}}),
             text, small},
            {"gzip of a zip", gzip(zipOf({{"a", longText}})), longText, large},
    };
    for (const auto& [what, bytes, expected, maxReads] : cases) {
        for (const size_t maxRead : maxReads) {
            TraceInput input = inputOf(bytes, maxRead);
            EXPECT_EQ(rest(input.open()), expected) << what << " in reads of " << maxRead;
            char some[10];
            input.open().read(some, sizeof(some));
            EXPECT_EQ(rest(input.open()), expected) << what << " again, in reads of " << maxRead;
        }
    }
}

constexpr replay::TimeWindow kWholeTrace = {INT64_MIN, INT64_MAX};

TEST(InputTest, FindsTheTraceOfAPageWhereverABlockEnds) {
    for (size_t before = 6000; before < 6060; ++before) {
        const std::string start = "<html>" + std::string(before, 'x');
        for (const std::string& trace : {elementOf(kText), stringOf(kText)}) {
            for (const size_t maxRead : {size_t{64}, size_t{1000}})
                EXPECT_EQ(rest(inputOf(start + trace, maxRead).open()), kText) << before;
        }
    }
}

TEST(InputTest, GivesTheSameHintsInEveryFormat) {
    const std::string examples = BREVOLD_EXAMPLES;
    host::loadProfile(examples + "/everything-on.profile");
    std::ifstream file(examples + "/game-60hz-headroom.ftrace.txt");
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const auto hintsOf = [](const std::string& bytes) {
        TraceInput input = inputOf(bytes);
        const Timeline timeline = readTimeline(input, {});
        std::ostringstream csv;
        report::writeHintsCsv(timeline, replay::playIsolated(timeline, {}), kWholeTrace, csv);
        return csv.str();
    };
    const std::string hints = hintsOf(text);
    EXPECT_GT(std::count(hints.begin(), hints.end(), '\n'), 10);
    const std::pair<const char*, std::string> cases[] = {
            {"gzip", gzip(text)},
            {"page", pageOf(text)},
            {"old page", oldPageOf(text)},
            {"atrace -z", atrace(text)},
            {"zip", zipOf({{"a", pageOf(text)}})},
            {"Perfetto", perfetto(text)},
            {"zip of a Perfetto trace", zipOf({{"a", perfetto(text)}})},
            {"without the last newline", text.substr(0, text.size() - 1)},
    };
    for (const auto& [what, bytes] : cases)
        EXPECT_EQ(hintsOf(bytes), hints) << what;
}

TEST(InputTest, NamesTheRemedyForOtherFormats) {
    const std::string kRecordAgain = "; record a Perfetto trace or use atrace";
    std::string utf16;
    for (const char c : kText)
        utf16 += {c, '\0'};
    const std::pair<std::string, std::string> cases[] = {
            {"\x17\x08\x44tracing6\0"s, "a trace-cmd file; convert it with 'trace-cmd report'"},
            {"*version\n3\nclock=dual\n", "an ART method trace" + kRecordAgain},
            {"SLOW\x03\0\x20\0"s, "an ART method trace" + kRecordAgain},
            {"\tLYRTRACE\x12\x05"s, "a winscope trace" + kRecordAgain},
            {"\xfd"
             "7zXZ\0\0"s,
             "xz data; decompress it with 'xz -d'"},
            {"\x28\xb5\x2f\xfd\x24"s, "zstd data; decompress it with 'zstd -d'"},
            {"BZh91AY&SY\x12"s, "bzip2 data; decompress it with 'bzip2 -d'"},
            {"\xff\xfe" + utf16, "UTF-16 text; convert it with 'iconv -f UTF-16 -t UTF-8'"},
            {"\xfe\xff\0#\0 "s, "UTF-16 text; convert it with 'iconv -f UTF-16 -t UTF-8'"},
            {utf16, "UTF-16 text; convert it with 'iconv -f UTF-16LE -t UTF-8'"},
            {"\0"s + utf16.substr(0, utf16.size() - 1),
             "UTF-16 text; convert it with 'iconv -f UTF-16BE -t UTF-8'"},
            {"{\n \"traceEvents\": [",
             "a JSON trace; give the Perfetto trace itself, or convert "
             "it with 'traceconv systrace'"},
            {"[{\"ph\":\"X\"},",
             "a JSON trace; give the Perfetto trace itself, or convert it with "
             "'traceconv systrace'"},
            {"\x89PNG\r\n\x1a\n\0\0"s, "binary data of an unknown format"},
    };
    for (const auto& [bytes, expected] : cases) {
        for (const std::string& packed : {bytes, gzip(bytes), zipOf({{"a", bytes}})})
            EXPECT_EQ(errorOf([&] { inputOf(packed); }), ": expected a trace, got " + expected);
    }
}

TEST(InputTest, ReadsWhatIsWholeOfATextThatEndsInsideALine) {
    const std::string unfinished =
            "lines skipped because the text ends inside them: 1, the first in line ";
    const struct {
        std::string text;
        int frames;
        std::string warning;
    } cases[] = {
            {kText.substr(0, kText.size() - 1), 2, ""},
            {kText.substr(0, kText.size() - 2), 1, unfinished + "4"},
            {kText.substr(0, kText.size() - 20), 1, ""},  // "C|90|Bu" may be whole
            {kText.substr(0, kText.size() - 34), 1, unfinished + "4"},
            {kText + "# comment", 2, ""},
            {kText + "  ", 2, ""},
            {kRows.substr(0, kRows.size() - 1), 2, ""},
            {kRows.substr(0, kRows.size() - 2), 1, unfinished + "3"},
            {kRows.substr(0, kRows.size() - 10), 1, unfinished + "3"},
            {kRows + "  ", 2, ""},
    };
    for (const auto& [text, frames, warning] : cases) {
        TraceInput input = inputOf(text);
        const Timeline timeline = readTimeline(input, {});
        EXPECT_EQ(timeline.layers[0].frames, frames) << text;
        std::string warnings;
        for (const TraceWarning& one : timeline.warnings)
            warnings += report::warningText(one);
        EXPECT_EQ(warnings, warning) << text;
    }
}

TEST(InputTest, TakesOneTraceOfAnArchive) {
    const std::string several = zipOf({{"a", kText}, {"b", "none"}, {"c", kRows}, {"d\n", kText}});
    const std::string report = zipOf({{kReportFolder + "x", kText}, {kReportFolder + "y", kText}});
    std::vector<std::pair<std::string, std::string>> many;
    for (int i = 0; i < 22; ++i)
        many.emplace_back(std::string(1, static_cast<char>('a' + i)), kText);
    std::string damaged = zipOf({{"a", kText}});
    damaged[40] = static_cast<char>(damaged[40] ^ 0x55);
    const auto choose = [](const std::string& list) {
        return ": expected an archive with one trace, got " + list;
    };
    const char* const kChoose = "; choose one of them as ARCHIVE:MEMBER: ";
    const struct {
        std::string bytes;
        const char* member;
        std::string error;
    } cases[] = {
            {several, "", choose("3"s + kChoose + "'a', 'c', 'd?'")},
            {report, "",
             choose("2"s + kChoose + quote(kReportFolder + "x") + ", " +
                    quote(kReportFolder + "y"))},
            {zipOf(many), "",
             choose("22"s + kChoose +
                    "'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k', "
                    "'l', 'm', 'n', 'o', 'p', 'q', 'r', 's', 't' and 2 more")},
            {several, "e", ": the archive has no such member"},
            {zipOf({{"a", "none"}, {"b", "\x89PNG"}}), "",
             ": expected an archive with a trace, found none in it"},
            {several.substr(0, several.size() - 10), "",
             ": the zip archive is damaged or incomplete; copy the file again"},
            {kText, "a", ": expected a zip archive before the colon, got another file"},
            {gzip(gzip(gzip(gzip(gzip(kText))))), "",
             ": is compressed too many times; decompress it first"},
    };
    for (const auto& [bytes, member, expected] : cases)
        EXPECT_EQ(errorOf([&, &packed = bytes, &name = member] { inputOf(packed, 64, name); }),
                  expected);
    const std::string error = errorOf([&] { rest(inputOf(damaged).open()); });
    EXPECT_EQ(error.find(": the member 'a' of the zip archive cannot be read: "), 0u) << error;

    const std::string path = fmt::format("{}input:{}.zip", testing::TempDir(), getpid());
    std::ofstream(path, std::ios::binary) << several;
    TraceInput text(path + ":a");
    EXPECT_EQ(text.name(), path + ":a");
    EXPECT_EQ(rest(text.open()), kText);
    EXPECT_EQ(rest(text.open()), kText);
    EXPECT_EQ(rest(TraceInput(path + ":c").open()), kRows);
    remove(path.c_str());
}

TEST(InputTest, LimitsTheExpansionOfTheWholeInput) {
    // Each layer expands about tenfold; text of one byte up to a thousandfold.
    std::string text = kText;
    for (int i = 0; i < 5000; ++i)
        text += fmt::format("# {}\n", i * 7919 % 5000);
    const std::string blanks = kText + std::string(1'000'000, '\n');
    const ExpansionLimits byteLimit = {text.size(), 1000, text.size()};
    const ExpansionLimits ratioLimit = {10'000'000, 100, 500'000};
    const struct {
        const char* what;
        std::string bytes;
        ExpansionLimits limits;
        bool isRefused;
    } cases[] = {
            {"gzip at the limit", gzip(text), byteLimit, false},
            {"gzip beyond the limit", gzip(text + "\n"), byteLimit, true},
            {"zip at the limit", zipOf({{"a", text}}), byteLimit, false},
            {"zip beyond the limit", zipOf({{"a", text + "\n"}}), byteLimit, true},
            {"atrace -z beyond the limit", atrace(text + "\n"), byteLimit, true},
            {"usual ratio", zipOf({{"a", gzip(text)}}), ratioLimit, false},
            {"gzip beyond the ratio", gzip(blanks), ratioLimit, true},
            {"zip beyond the ratio", zipOf({{"a", blanks}}), ratioLimit, true},
            {"high ratio of a short text", gzip(blanks), {10'000'000, 100, 2'000'000}, false},
            // The inner layer expands 200 times, the outer one does the rest.
            {"gzip in zip", zipOf({{"a", gzip(blanks)}}), {10'000'000, 1500, 500'000}, true},
            {"gzip only", gzip(blanks), {10'000'000, 1500, 500'000}, false},
    };
    for (const auto& one : cases) {
        const std::string error = errorOf([&one] {
            TraceInput input(std::make_unique<StringSource>(one.bytes), kName, {}, one.limits);
            rest(input.open());
            rest(input.open());
        });
        const bool isRefused = error.find(": expected a compressed trace, got ") == 0;
        EXPECT_EQ(isRefused, one.isRefused) << one.what << error;
        EXPECT_EQ(error == "no error", !one.isRefused) << one.what << error;
    }
}

}  // namespace
}  // namespace brevold::trace
