#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/error.h"

/**
 * Text of key=value lines, as device and workload files have it. Blanks around key and value are
 * ignored, as are empty lines and everything from a "#" on.
 */
namespace brevold::sim {

using ApplySetting = std::function<void(std::string_view key, std::string_view value)>;

/**
 * Applies each line of a text. A key may be repeated only if `mayRepeat` returns true for it.
 * Throws InputError "name:line: ...".
 */
void applySettings(std::string_view text, const std::string& name, const ApplySetting& apply,
                   bool (*mayRepeat)(std::string_view key));

/** Applies one "key=value" of the command line. Throws InputError "option key=value: ...". */
void applySetting(std::string_view entry, const std::string& option, const ApplySetting& apply);

/** Reads a whole file. Throws InputError. */
std::string readFile(const std::string& path);

/** A number from `min` to `max`. Throws InputError. */
double numberIn(std::string_view value, double min, double max);

/** Milliseconds from `minMs` to `maxMs`, as nanoseconds. Throws InputError. */
int64_t millisecondsIn(std::string_view value, double minMs, double maxMs);

/** A whole number from `min` to `max`. Throws InputError. */
int32_t integerIn(std::string_view value, int32_t min, int32_t max);

template <typename T>
using Words = std::vector<std::pair<const char*, T>>;

[[noreturn]] void refuseWord(std::string_view value, const std::vector<const char*>& words);

/** The enumerator that a word names. Throws InputError, which lists the words. */
template <typename T>
T parseWord(std::string_view value, const Words<T>& words) {
    std::vector<const char*> names;
    for (const auto& [name, result] : words) {
        if (value == name) return result;
        names.push_back(name);
    }
    refuseWord(value, names);
}

template <typename T>
const char* wordOf(T value, const Words<T>& words) {
    for (const auto& [name, result] : words) {
        if (value == result) return name;
    }
    return "";
}

}  // namespace brevold::sim
