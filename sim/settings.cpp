#include "sim/settings.h"

#include <fmt/format.h>

#include <cerrno>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "base/descriptor.h"
#include "base/text.h"

namespace brevold::sim {

namespace {

std::string_view trim(std::string_view text) {
    return trimStart(trimEnd(text));
}

std::pair<std::string_view, std::string_view> splitEntry(std::string_view entry) {
    const size_t equals = entry.find('=');
    if (equals == std::string_view::npos || trim(entry.substr(0, equals)).empty()) {
        throw InputError(fmt::format("expected key=value, got \"{}\"", entry));
    }
    return {trim(entry.substr(0, equals)), trim(entry.substr(equals + 1))};
}

}  // namespace

void applySettings(std::string_view text, const std::string& name, const ApplySetting& apply,
                   bool (*mayRepeat)(std::string_view key)) {
    std::map<std::string_view, int> lines;
    for (int line = 1; !text.empty(); ++line) {
        std::string_view rest = takeUntil('\n', &text);
        const std::string_view entry = trim(takeUntil('#', &rest));
        if (entry.empty()) continue;
        try {
            const auto [key, value] = splitEntry(entry);
            const auto [first, isNew] = lines.try_emplace(key, line);
            if (!isNew && !mayRepeat(key)) {
                throw InputError(
                        fmt::format("a second {}; the first is on line {}", key, first->second));
            }
            apply(key, value);
        } catch (const InputError& error) {
            throw InputError(fmt::format("{}:{}: {}", name, line, error.what()));
        }
    }
}

void applySetting(std::string_view entry, const std::string& option, const ApplySetting& apply) {
    try {
        const auto [key, value] = splitEntry(entry);
        apply(key, value);
    } catch (const InputError& error) {
        throw InputError(fmt::format("{} {}: {}", option, entry, error.what()));
    }
}

std::string readFile(const std::string& path) {
    if (std::filesystem::is_directory(path)) throw InputError(path + ": is a directory");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw InputError(path + ": cannot be opened: " + errnoText(errno));
    std::ostringstream text;
    text << file.rdbuf();
    if (file.bad()) throw InputError(path + ": cannot be read");
    return text.str();
}

double numberIn(std::string_view value, double min, double max) {
    // Not from_chars, which libc++ lacks for floating point.
    const std::string text(value);
    char* end = nullptr;
    const double number = strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(number >= min && number <= max)) {
        throw InputError(
                fmt::format("expected a number from {} to {}, got \"{}\"", min, max, value));
    }
    return number;
}

int64_t millisecondsIn(std::string_view value, double minMs, double maxMs) {
    return std::llround(numberIn(value, minMs, maxMs) * 1e6);
}

int32_t integerIn(std::string_view value, int32_t min, int32_t max) {
    int32_t number = 0;
    if (!parseWhole(value, &number) || number < min || number > max) {
        throw InputError(
                fmt::format("expected a whole number from {} to {}, got \"{}\"", min, max, value));
    }
    return number;
}

void refuseWord(std::string_view value, const std::vector<const char*>& words) {
    throw InputError(fmt::format("expected {}, got \"{}\"", fmt::join(words, " or "), value));
}

}  // namespace brevold::sim
