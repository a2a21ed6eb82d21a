#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

namespace brevold {

/** Returns 0 if the whole is 0. */
inline double percentOf(int64_t part, int64_t whole) {
    return whole == 0 ? 0.0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

/** Parses all of `text`. Returns false if it is not a number or out of range for the type. */
template <typename T>
bool parseWhole(std::string_view text, T* number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, *number);
    return result.ec == std::errc() && result.ptr == end;
}

/** Quotes a text for a message. Replaces control characters and cuts a long text. */
std::string quote(std::string_view text);

constexpr std::string_view kBlanks = " \t\r";

// Loops, because the searches of std::string_view are slow for sets of characters.

inline bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

inline std::string_view trimEnd(std::string_view text) {
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

inline std::string_view trimStart(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

/** Removes the part before the first separator, and the separator, and returns that part. */
inline std::string_view takeUntil(char separator, std::string_view* text) {
    const size_t length = std::min(text->find(separator), text->size());
    const std::string_view head = text->substr(0, length);
    text->remove_prefix(std::min(length + 1, text->size()));
    return head;
}

}  // namespace brevold
