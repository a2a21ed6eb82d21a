// The kinds of input, and what is wrong with one.

#include <gtest/gtest.h>
#include <unistd.h>
#include <zlib.h>

#include <fstream>
#include <iterator>

#include "replay/timeline.h"

namespace brevold::replay {
namespace {

const std::string kTrace =
        "# tracer: nop\n"
        "b-91 [000] 1.001: 0: C|90|BufferTX - a#1|1\n"
        "s-90 [000] 1.002: 0: B|90|composite \"1\\2\"\n"
        "s-90 [000] 1.003: 0: C|90|BufferTX - a#1|0\n"
        "s-90 [000] 1.004: 0: E|90\n";
const std::string kElement = "<script class=\"trace-data\" type=\"application/text\">\n";
const std::string kOldPage =
        "<html><script>\n  var linuxPerfData = \"\\\n# tracer: nop\\n\\\n"
        "b-91 [000] 1.001: 0: C|90|BufferTX - a#1|1\\n\\\n"
        "s-90 [000] 1.002: 0: B|90|composite \\\"1\\\\2\\\"\\n\\\n"
        "s-90 [000] 1.003: 0: C|90|BufferTX - a#1|0\\n\\\n"
        "s-90 [000] 1.004: 0: E|90\";\n</script></html>";

std::string pageOf(const std::string& trace, size_t padding = 300'000) {
    return "<!DOCTYPE html>\n<script>" + std::string(padding, 'x') + "</script>\n" + kElement +
           "PROCESS DUMP\n  </script>\n" + kElement + trace + "  </script>\n</html>\n";
}

/** A file of the test's own, until the object goes. */
class InputFile {
  public:
    InputFile() { close(mkstemp(mPath.data())); }
    ~InputFile() { unlink(mPath.c_str()); }

    const std::string& path() const { return mPath; }
    void write(const std::string& bytes) { std::ofstream(mPath, std::ios::binary) << bytes; }
    std::string compress(const std::string& bytes) {
        const gzFile file = gzopen(mPath.c_str(), "wb");
        gzwrite(file, bytes.data(), static_cast<unsigned>(bytes.size()));
        gzclose(file);
        std::ifstream stream(mPath, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    /** The text; behind "error:" what is wrong, without the path. */
    std::string text() {
        try {
            TraceInput input(mPath);
            std::string text(std::istreambuf_iterator<char>(input.openText()), {});
            input.openText().ignore(10);
            EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(input.openText()), {}));
            return text;
        } catch (const InputError& error) {
            return messageOf(error);
        }
    }
    std::string error(const TimelineOptions& options = {}) {
        try {
            readTimeline(mPath, options);
        } catch (const InputError& error) {
            return messageOf(error);
        }
        return "no error";
    }

  private:
    std::string messageOf(const InputError& error) {
        return "error" + std::string(error.what()).substr(mPath.size());
    }

    std::string mPath = testing::TempDir() + "inputXXXXXX";
};

TEST(InputTest, TellsTheKindByItsContent) {
    InputFile file;
    std::string longTrace = kTrace;
    for (int i = 0; i < 20'000; ++i)
        longTrace += "s-90 [000] 2.0: sched_wakeup: " + std::to_string(i) + "\n";
    for (const auto& [bytes, text] :
         {std::pair(kTrace, kTrace), std::pair(pageOf(kTrace), kTrace),
          std::pair(pageOf(longTrace), longTrace), std::pair(kOldPage, kTrace),
          std::pair(pageOf(kTrace) + pageOf(longTrace), kTrace + longTrace),
          std::pair(std::string("<...>-7 [001] 1.0: print: E\n"),
                    std::string("<...>-7 [001] 1.0: print: E\n"))}) {
        file.write(bytes);
        EXPECT_EQ(file.text(), text) << bytes.substr(0, 40);
        file.write(file.compress(bytes));
        EXPECT_EQ(file.text(), text) << "compressed " << bytes.substr(0, 40);
    }
}

TEST(InputTest, ReadsPagesAcrossItsBlocks) {
    InputFile file;
    const std::string longTrace = kTrace + "#" + std::string(6'000, 'x') + "\n";
    for (size_t shift = 0; shift < 450; ++shift) {
        const size_t padding = 32'768 - shift;
        file.write(pageOf(kTrace, padding));
        ASSERT_EQ(file.text(), kTrace) << shift;
        file.write("<html>" + std::string(padding, 'x') + kOldPage);
        ASSERT_EQ(file.text(), kTrace) << shift << " old";
        if (shift >= 60) continue;
        file.write(pageOf(longTrace, padding - (pageOf(longTrace, 0).size() - 40)));
        ASSERT_EQ(file.text(), longTrace) << shift << " long";
    }
}

TEST(InputTest, SaysWhatIsWrong) {
    InputFile file;
    const std::string gzip = file.compress(kTrace);
    const std::string page = pageOf(kTrace);
    const struct {
        std::string bytes;
        const char* message;
    } cases[] = {
            {"", "error: is empty, expected ftrace text"},
            {gzip.substr(0, 12), "error: ends inside of its gzip data; was the file cut short?"},
            {gzip.substr(0, gzip.size() - 1),
             "error: ends inside of its gzip data; was the file cut short?"},
            {gzip.substr(0, gzip.size() - 8) + "12345678", "error: its gzip data is damaged"},
            {page.substr(0, page.size() - 30),
             "error: ends inside of a script element; was the file cut short?"},
            {kOldPage.substr(0, 100),
             "error: ends inside of a script element; was the file cut short?"},
            {page.substr(0, 1000), "error: is a web page without an ftrace text in it"},
            {pageOf("USER PID\n"), "error: is a web page without an ftrace text in it"},
            {kTrace + "a-1 [0] 9.0: 0: E\na-1 [0] 1.0: 0: E\na-1 [0] 1.0: 0: E\n"
                      "a-1 [0] 1.0: 0: E\na-1 [0] 1.0: 0: E\na-1 [0] 1.0: 0: E\n"
                      "a-1 [0] 1.0: 0: E\n",
             "error:7: most lines go back in time from here on; is an earlier time wrong?"},
            {"999999\n",
             "error:1: expected a refresh period of 1000000 to 1000000000 ns, got '999999'"},
            {"16666666\n0\t0\t0\n5\t9223372036854775807\t6\n",
             "error: no row tells of a frame that was shown"},
            {"16666666\n5000\t6000\t50",
             "error:2: ends in the middle of a line; was the dump cut short?"},
    };
    for (const auto& c : cases) {
        file.write(c.bytes);
        EXPECT_EQ(file.error(), c.message);
    }
}

TEST(InputTest, CountsWhatIsOdd) {
    InputFile file;
    const auto line = [](int time, int depth) {
        return "a-1 [0] " + std::to_string(time) + ".0: 0: C|9|BufferTX - a|" +
               std::to_string(depth) + "\n";
    };
    const std::string start = line(4, 3) + line(5, 2);
    const struct {
        std::string bytes;
        std::vector<std::string> warnings;
    } cases[] = {
            {start + "closing\nstray\n",
             {"lines that are no trace events: 2, the first in line 3"}},
            {start + line(0, 1), {}},
            {start + line(0, 1) + line(6, 1),
             {"lines left out, as they go back in time: 1, the first in line 3"}},
            {start + line(0, 1) + line(0, 1),
             {"lines left out, as they go back in time: 2, the first in line 3"}},
            {start + line(6, 0) + line(7, -1) + line(8, 0) + line(9, 2),
             {"queue depths below 0, taken as 0: 1, the first in line 4",
              "queue depths that jump by more than one: 2, the first in line 3"}},
            {"16666666\n5\t6000\t5\nx\n5\t7000\t4\n5\t8000\t9000000000000000001\n",
             {"lines that are no row of a latency dump: 2, the first in line 3",
              "rows left out, as they go back in time: 1, the first in line 4"}},
    };
    for (const auto& c : cases) {
        file.write(c.bytes);
        EXPECT_EQ(readTimeline(file.path(), {}).warnings, c.warnings) << c.bytes;
    }
}

TEST(InputTest, ReadsLatencyDumps) {
    InputFile file;
    // The fourth row is ready late; the first is unused, the last two are pending.
    file.write(
            "WARNING: something\n16700000\n0\t0\t0\n"
            "5\t50000000\t10000000\n5\t67000000\t20000000\n5\t84000000\t75000000\n"
            "90000000\t9223372036854775807\t80000000\n0\t0\t90000000\n\n");
    const Timeline timeline = readTimeline(file.path(), {});
    std::string events;
    for (const TimelineEvent& event : timeline.events) {
        events += std::to_string(event.timeNs / 100'000) +
                  (event.kind == TimelineEvent::Kind::Depth ? "=" + std::to_string(event.depth)
                   : event.kind == TimelineEvent::Kind::Period
                           ? " " + std::to_string(event.periodNs)
                           : std::string(1, "  <>|"[static_cast<size_t>(event.kind)])) +
                  " ";
    }
    EXPECT_EQ(events,
              "100 16666666 100=1 200=2 333< 333=1 333> 500| 503< 503=0 503> 670| 750=1 750< 750=0 "
              "750> 840| ");
    EXPECT_EQ(timeline.layers[0].name, "layer#0");
    EXPECT_EQ(timeline.periodSource, "the dump's first line");
    EXPECT_EQ(readTimeline(file.path(), {"com.a#7", {}}).layers[0].name, "com.a#7");
}

}  // namespace
}  // namespace brevold::replay
