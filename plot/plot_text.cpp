#include "plot/plot_text.h"

#include <fmt/format.h>
#include <utf8.h>

#include <iterator>

namespace brevold::plot {

namespace {

constexpr char32_t kReplacement = '?';

bool isDrawn(char32_t character) {
    const bool isControl = character < 0x20 || (character >= 0x7f && character < 0xa0);
    // An XML document, as an SVG picture is one, must not contain these two.
    return !isControl && character != 0xfffe && character != 0xffff;
}

}  // namespace

std::string printable(std::string_view text) {
    std::string valid;
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid), kReplacement);
    std::u32string characters;
    utf8::utf8to32(valid.begin(), valid.end(), std::back_inserter(characters));
    std::string drawn;
    for (const char32_t character : characters)
        utf8::append(isDrawn(character) ? character : kReplacement, std::back_inserter(drawn));
    return drawn;
}

std::string shortened(std::string_view text, size_t maxLength) {
    const std::string valid = printable(text);
    std::u32string characters;
    utf8::utf8to32(valid.begin(), valid.end(), std::back_inserter(characters));
    if (characters.size() <= maxLength) return valid;
    const auto tail = characters.end() - static_cast<ptrdiff_t>(maxLength - 1 - maxLength / 2);
    characters.erase(characters.begin() + static_cast<ptrdiff_t>(maxLength / 2), tail);
    characters.insert(maxLength / 2, 1, U'\u2026');
    std::string cut;
    utf8::utf32to8(characters.begin(), characters.end(), std::back_inserter(cut));
    return cut;
}

const TimeUnit& timeUnitOf(double seconds) {
    static constexpr TimeUnit kUnits[] = {{"h", 3600}, {"min", 60}, {"s", 1}, {"ms", 1e-3}};
    static constexpr TimeUnit kMicrosecond = {"\u00b5s", 1e-6};
    for (const TimeUnit& unit : kUnits) {
        // 179 s is clearer than 2.98 min.
        const double minUnits = unit.seconds > 1 ? 3 : 1;
        if (seconds >= minUnits * unit.seconds) return unit;
    }
    return kMicrosecond;
}

std::string durationText(double seconds) {
    const TimeUnit& unit = timeUnitOf(seconds);
    const double value = seconds / unit.seconds;
    const int digits = value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
    return fmt::format("{:.{}f} {}", value, digits, unit.name);
}

}  // namespace brevold::plot
