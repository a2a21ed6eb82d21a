// From the bytes of an input to its trace: formats, archives, limits and incomplete texts.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "base/text.h"
#include "tests/inputs.h"
#include "tests/packed.h"
#include "tests/pages.h"
#include "tests/proto_writer.h"

namespace brevold::trace {
namespace {

using namespace std::string_literals;
using namespace test;

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

TEST(InputTest, FindsTheTraceInEveryFormat) {
    const std::string text = kText + "a-90 [000] 2.0: 0: B|90|composite \"1\\2\"\n";
    std::string longText = text;
    for (int i = 1; i <= 20'000; ++i)
        longText += fmt::format("a-{} [000] 2.0: 0: C|90|a|{}\n", 90 + i % 2, i % 2);
    const std::string script = "if(!/^var linuxPerfData = \"\\\\$/.test(line))return \"a-b\";";
    const std::string unclosed = "<script class=\"trace-data\"" + std::string(100'000, ' ');
    const std::tuple<const char*, std::string, std::string> cases[] = {
            {"text", text, text},
            {"byte-order mark", kByteOrderMark + text, text},
            {"latency dump with a byte-order mark", kByteOrderMark + kRows, kRows},
            {"old page", oldPageOf(text), text},
            {"page with a byte-order mark", kByteOrderMark + oldPageOf(text), text},
            {"two pages", pageOf(text) + pageOf(text), text + text},
            {"page whose script looks for the string", pageOf(text, script), text},
            {"page with a tag that is not closed", "<html>" + unclosed + pageOf(text), text},
            {"long page", pageOf(longText, std::string(300'000, 'x')), longText},
            {"gzip", gzip(text), text},
            {"gzip of two members and padding", gzip(text) + gzip(text) + "0", text + text},
            {"gzip of an old page", gzip(oldPageOf(text)), text},
            {"gzip of a long page", gzip(pageOf(longText)), longText},
            {"gzip of a text with a byte-order mark", gzip(kByteOrderMark + text), text},
            {"atrace -z", atrace(text), text},
            {"atrace -z without other lines", "TRACE:\r\n" + test::zlib(text), text},
            {"gzip of atrace -z", gzip(atrace(text)), text},
            {"zip", zipOf({{"a", text}}), text},
            {"zip of a page among other files",
             zipOf({{"folder/", ""}, {"a.png", "\x89PNG\0"s}, {"b", pageOf(text)}}), text},
            {"zip of gzip among other files", zipOf({{"read.me", "a"}, {"b", gzip(text)}}), text},
            {"bug report",
             zipOf({{"version.txt", "2.0"}, {"systrace.txt", kText}, {kReportFolder + "a", text}}),
             text},
            {"gzip of a zip", gzip(zipOf({{"a", longText}})), longText},
    };
    for (const auto& [what, bytes, expected] : cases) {
        for (const size_t maxRead : std::vector<size_t>{1, 2, 3, 7, 64, kWhole}) {
            // A long trace in tiny blocks takes too long.
            if (expected.size() > 100'000 && maxRead < 64) continue;
            TraceInput input = inputOf(bytes, maxRead);
            EXPECT_EQ(rest(input.open()), expected) << what << " in reads of " << maxRead;
            char some[10];
            input.open().read(some, sizeof(some));
            EXPECT_EQ(rest(input.open()), expected) << what << " again, in reads of " << maxRead;
        }
    }
}

TEST(InputTest, FindsTheTraceOfAPageWhereverABlockEnds) {
    for (size_t before = 6000; before < 6060; ++before) {
        const std::string start = "<html>" + std::string(before, 'x');
        for (const std::string& trace : {elementOf(kText), stringOf(kText)}) {
            for (const size_t maxRead : {size_t{64}, size_t{1000}})
                EXPECT_EQ(rest(inputOf(start + trace, maxRead).open()), kText) << before;
        }
    }
}

TEST(InputTest, NamesTheRemedyForOtherFormats) {
    const std::string recordAgain = "; record a Perfetto trace or use atrace";
    const std::string artTrace = "an ART method trace" + recordAgain;
    const std::string jsonTrace =
            "a JSON trace; give the Perfetto trace itself, or convert it with 'traceconv systrace'";
    const std::string utf16Text = "UTF-16 text; convert it with 'iconv -f UTF-16";
    std::string utf16;
    for (const char c : kText)
        utf16 += {c, '\0'};
    const std::pair<std::string, std::string> cases[] = {
            {"\x17\x08\x44tracing6\0"s, "a trace-cmd file; convert it with 'trace-cmd report'"},
            {"*version\n3\nclock=dual\n", artTrace},
            {"SLOW\x03\0\x20\0"s, artTrace},
            {"\tLYRTRACE\x12\x05"s, "a winscope trace" + recordAgain},
            {"\xfd\x37zXZ\0\0"s, "xz data; decompress it with 'xz -d'"},
            {"\x28\xb5\x2f\xfd\x24"s, "zstd data; decompress it with 'zstd -d'"},
            {"BZh91AY&SY\x12"s, "bzip2 data; decompress it with 'bzip2 -d'"},
            {"\xff\xfe" + utf16, utf16Text + " -t UTF-8'"},
            {"\xfe\xff\0#\0 "s, utf16Text + " -t UTF-8'"},
            {utf16, utf16Text + "LE -t UTF-8'"},
            {"\0"s + utf16.substr(0, utf16.size() - 1), utf16Text + "BE -t UTF-8'"},
            {utf16.substr(0, 8) + "\0\4"s, utf16Text + "LE -t UTF-8'"},  // U+0400
            {"{\n \"traceEvents\": [", jsonTrace},
            {"[{\"ph\":\"X\"},", jsonTrace},
            {"\x89PNG\r\n\x1a\n\0\0"s, "binary data of an unknown format"},
    };
    for (const auto& [bytes, expected] : cases) {
        for (const std::string& packed : {bytes, gzip(bytes), zipOf({{"a", bytes}})})
            EXPECT_EQ(errorOf([&] { inputOf(packed); }),
                      "trace: expected a trace, got " + expected);
    }
}

TEST(InputTest, SkipsOnlyAnUnfinishedLastLine) {
    const std::string unfinished =
            "lines skipped because the text ends inside them: 1, the first in line ";
    const std::tuple<std::string, int, std::string> cases[] = {
            {kText.substr(0, kText.size() - 1), 2, ""},
            {kText.substr(0, kText.size() - 2), 1, unfinished + "4"},
            {kText.substr(0, kText.size() - 20), 1, ""},                // "C|90|Bu" may be whole
            {kText.substr(0, kText.size() - 22), 1, unfinished + "4"},  // the event "0"
            {kText.substr(0, kText.size() - 34), 1, unfinished + "4"},
            {kText + "# comment", 2, ""},
            {kText + "  ", 2, ""},
            {kRows.substr(0, kRows.size() - 1), 2, ""},
            {kRows.substr(0, kRows.size() - 2), 1, unfinished + "3"},
            {kRows.substr(0, kRows.size() - 10), 1, unfinished + "3"},
            {kRows + "  ", 2, ""},
    };
    for (const auto& [text, frames, warning] : cases) {
        const Timeline timeline = read(text);
        EXPECT_EQ(timeline.layers[0].frames, frames) << text;
        EXPECT_EQ(warningsOf(timeline), warning) << text;
    }
}

TEST(InputTest, TakesOneTraceOfAnArchive) {
    const std::string several = zipOf({{"a", kText}, {"b", "none"}, {"c", kRows}, {"d\n", kText}});
    const std::string report = zipOf({{kReportFolder + "x", kText}, {kReportFolder + "y", kText}});
    std::vector<std::pair<std::string, std::string>> many;
    for (const char name : "abcdefghijklmnopqrst"s)
        many.emplace_back(std::string(1, name), kText);
    const std::string max = zipOf(many);
    many.emplace_back("u", kText);
    std::string damaged = zipOf({{"a", kText}});
    damaged[40] = static_cast<char>(damaged[40] ^ 0x55);
    const auto choose = [](int count, const std::string& list) {
        return fmt::format(
                "expected an archive with one trace, got {}; choose one of them as "
                "ARCHIVE:MEMBER: {}",
                count, list);
    };
    const std::string listed =
            "'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k', 'l', 'm', 'n', 'o', 'p', 'q', "
            "'r', 's', 't'";
    const std::string reports = quote(kReportFolder + "x") + ", " + quote(kReportFolder + "y");
    const std::tuple<std::string, const char*, std::string> cases[] = {
            {several, "", choose(3, "'a', 'c', 'd?'")},
            {report, "", choose(2, reports)},
            {max, "", choose(20, listed)},
            {zipOf(many), "", choose(21, listed + " and 1 more")},
            {several, "e", "the archive has no such member"},
            {zipOf({{"a", "none"}, {"b", "\x89PNG"}}), "",
             "expected an archive with a trace, found none in it"},
            {several.substr(0, several.size() - 10), "",
             "the zip archive is damaged or incomplete; copy the file again"},
            {kText, "a", "expected a zip archive before the colon, got another file"},
            {gzip(gzip(gzip(gzip(gzip(kText))))), "",
             "is compressed too many times; decompress it first"},
    };
    for (const auto& [bytes, member, expected] : cases)
        EXPECT_EQ(errorOf([&, &packed = bytes, &name = member] { inputOf(packed, 64, name); }),
                  "trace: " + expected);
    const std::string error = errorOf([&] { rest(inputOf(damaged).open()); });
    EXPECT_EQ(error.find("trace: the member 'a' of the zip archive cannot be read: "), 0u) << error;

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
    const std::tuple<const char*, std::string, ExpansionLimits, bool> cases[] = {
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
    for (const auto& [what, bytes, limits, isRefused] : cases) {
        const std::string error = errorOf([&packed = bytes, &limit = limits] {
            TraceInput input(std::make_unique<StringSource>(packed), "trace", {}, limit);
            rest(input.open());
            rest(input.open());
        });
        const std::string expected = isRefused ? "trace: expected a compressed trace, got " : "";
        EXPECT_EQ(error.substr(0, 40), expected) << what << error;
    }
}

}  // namespace
}  // namespace brevold::trace
