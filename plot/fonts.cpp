#include "plot/fonts.h"

#include <utf8.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <vector>

#include "base/text.h"
#include "plot/run_program.h"

namespace brevold::plot {

namespace {

struct Range {
    uint32_t first;
    uint32_t last;
};

/** Parses the characters of all fonts, one font per line: "20-7e a0-17f 192". */
std::vector<Range> parseRanges(std::string_view text) {
    std::vector<Range> ranges;
    const auto parse = [](std::string_view digits, uint32_t* value) {
        std::from_chars(digits.data(), digits.data() + digits.size(), *value, 16);
    };
    while (!text.empty()) {
        std::string_view line = takeUntil('\n', &text);
        while (!line.empty()) {
            std::string_view word = takeUntil(' ', &line);
            Range range = {};
            parse(takeUntil('-', &word), &range.first);
            range.last = range.first;
            parse(word, &range.last);
            ranges.push_back(range);
        }
    }
    return ranges;
}

}  // namespace

std::string replaceUnknownGlyphs(const std::string& text) {
    const bool isAscii =
            std::all_of(text.begin(), text.end(), [](char c) { return c >= 0 && c < 0x7f; });
    if (isAscii) return text;
    const ProgramResult fonts = runProgram({"fc-list", "--format", "%{charset}\n"}, "");
    if (!fonts.isFound || fonts.hasFailed) return text;
    const std::vector<Range> ranges = parseRanges(fonts.output);
    const auto isKnown = [&](uint32_t character) {
        return character < 0x7f ||
               std::any_of(ranges.begin(), ranges.end(), [&](const Range& range) {
                   return range.first <= character && character <= range.last;
               });
    };
    std::string drawn;
    for (auto at = text.begin(); at != text.end();) {
        const uint32_t character = utf8::next(at, text.end());
        utf8::append(isKnown(character) ? character : '?', std::back_inserter(drawn));
    }
    return drawn;
}

}  // namespace brevold::plot
