#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace android {

// Without branches, so that runLength() is made of vector instructions.
constexpr uint8_t isDigit(uint8_t byte) {
    return static_cast<uint8_t>(byte - '0') <= 9;
}

/** What the expression's [-\s\t] takes. The standard library has no other white space in a byte. */
constexpr uint8_t isSeparator(uint8_t byte) {
    return (byte == '-') | (byte == ' ') | (static_cast<uint8_t>(byte - '\t') <= '\r' - '\t');
}

/** How many bytes of a class begin the text. */
template <uint8_t isInClass(uint8_t)>
size_t runLength(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
    constexpr size_t kBlock = 64;
    size_t length = 0;
    for (; text.size() - length >= kBlock; length += kBlock) {
        uint8_t isWhole = 1;
        for (size_t i = 0; i < kBlock; ++i)
            isWhole &= isInClass(bytes[length + i]);
        if (isWhole == 0) break;
    }
    while (length < text.size() && isInClass(bytes[length]) != 0)
        ++length;
    return length;
}

/**
 * The few bytes of a layer name that decide which part of it is the package. An application chooses
 * the name, and a backtracking matcher's work grows with its square or cube: so the package
 * expression is given these bytes alone, the name with four runs cut short.
 *
 * The expression is (?:SurfaceView[-\s\t]+)?([^/]+).*#\d+ and has to account for all of the name.
 * Its digits can only be those that end the name, and its number sign only the one before them (the
 * sign). Group 1 holds no slash, and what stands between it and the sign no line end. It is greedy,
 * so it ends at the first slash, or at the sign if that comes first (the stop), wherever it begins:
 * the prefix and its separators hold neither. So the expression matches only if there is a sign,
 * the stop is not the first byte, and no line end stands from stop to sign. Then it does match: if
 * in no other way, with group 1 from the first byte on. Group 1 begins behind all separators if
 * anything stands between them and the stop; else with the last separator if there are two, as
 * the prefix wants one; else with the first byte.
 *
 * None of that changes when the bytes from stop to sign are left out, all digits but the first, all
 * separators but the last two, and all but the first byte from the separators to the stop.
 */
struct LayerNameExcerpt {
    static constexpr std::string_view kPrefix = "SurfaceView";

    /** At most 16 bytes, which the expression matches if and only if it matches the name. */
    std::string text;
    size_t separatorsCut = 0;
    /** Where in the name a package ends. */
    size_t stop = 0;

    explicit LayerNameExcerpt(std::string_view name) {
        const void* const found = memrchr(name.data(), '#', name.size());
        if (found == nullptr) return;
        const auto sign = static_cast<size_t>(static_cast<const char*>(found) - name.data());
        const std::string_view digits = name.substr(sign + 1);
        if (digits.empty() || runLength<isDigit>(digits) != digits.size()) return;

        stop = std::min(name.find('/'), sign);
        const std::string_view between = name.substr(stop, sign - stop);
        constexpr size_t kNone = std::string_view::npos;
        if (between.find('\n') != kNone || between.find('\r') != kNone) return;

        const bool hasPrefix = name.substr(0, kPrefix.size()) == kPrefix;
        const size_t prefix = hasPrefix ? kPrefix.size() : 0;
        const size_t separators = hasPrefix ? runLength<isSeparator>(name.substr(prefix)) : 0;
        separatorsCut = separators - std::min<size_t>(separators, 2);
        const size_t kept = prefix + separatorsCut;
        text.append(name, 0, prefix);
        text.append(name, kept, std::min(prefix + separators + 1, stop) - kept);
        text.append(name, sign, 2);
    }

    /** Where in the name a package begins that begins there in the text. */
    size_t packageBegin(size_t inText) const { return inText == 0 ? 0 : inText + separatorsCut; }
};

}  // namespace android
