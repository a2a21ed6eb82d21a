#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace android {

// Without branches, so that the compiler vectorises runLength().
constexpr uint8_t isDigit(uint8_t byte) {
    return static_cast<uint8_t>(byte - '0') <= 9;
}

/** The bytes of [-\s\t]. The standard library treats no other byte as white space. */
constexpr uint8_t isSeparator(uint8_t byte) {
    return (byte == '-') | (byte == ' ') | (static_cast<uint8_t>(byte - '\t') <= '\r' - '\t');
}

/** Returns the number of leading bytes that belong to a class. */
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
 * The few bytes of a layer name that decide its package. A backtracking matcher's time grows with
 * the square or cube of the name's length, so the package expression runs on these bytes only.
 *
 * (?:SurfaceView[-\s\t]+)?([^/]+).*#\d+ matches the whole name, so its #\d+ is the last '#' (the
 * sign) and the digits after it. Group 1 is greedy and holds no slash: it ends at the stop, which
 * is the first slash or the sign. The name matches if a sign exists, the stop is not its first byte
 * and no line end lies between stop and sign. Group 1 begins after the separators if a byte is left
 * before the stop, else at the last of two or more separators, else at the first byte.
 *
 * So these can be cut: the bytes from stop to sign, all digits but the first, all separators but
 * the last two, and all bytes but the first between separators and stop.
 */
struct LayerNameExcerpt {
    static constexpr std::string_view kPrefix = "SurfaceView";

    /** At most 16 bytes. The expression matches them if and only if it matches the name. */
    std::string text;
    size_t separatorsCut = 0;
    /** Offset in the name at which its package ends. */
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

    /** Returns the offset in the name of a package that begins at this offset in the text. */
    size_t packageBegin(size_t inText) const { return inText + separatorsCut; }
};

}  // namespace android
