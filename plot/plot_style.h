#pragma once

#include <fmt/format.h>

#include <string>

namespace brevold::plot {

// Okabe and Ito's palette, which colour-blind readers can tell apart, and paler tints of it.
constexpr const char* kBlack = "#000000";
constexpr const char* kOrange = "#E69F00";
constexpr const char* kGreen = "#009E73";
constexpr const char* kBlue = "#0072B2";
constexpr const char* kVermillion = "#D55E00";
constexpr const char* kPurple = "#AA4488";
constexpr const char* kPaleGreen = "#A6DCCB";
constexpr const char* kPaleBlue = "#C6DFEF";
constexpr const char* kMidBlue = "#7FB8DA";
constexpr const char* kPaleVermillion = "#F2BF99";
constexpr const char* kGrey = "#888888";
constexpr const char* kGridGrey = "#D0D0D0";
constexpr const char* kShade = "#E6E6E6";

/** A rectangle without a border. Its columns are those of kBoxColumns. */
inline std::string filled(const char* colour) {
    return fmt::format("boxxyerror fs solid noborder fc rgb '{}'", colour);
}

/** A rectangle with a border, which is visible however narrow the rectangle is. */
inline std::string framed(const char* colour, double width = 1) {
    return fmt::format("boxxyerror fs solid border fc rgb '{0}' lc rgb '{0}' lw {1:g}", colour,
                       width);
}

inline std::string line(double width, const char* colour) {
    return fmt::format("lines lw {:g} lc rgb '{}'", width, colour);
}

inline std::string dashed(double width, const char* colour) {
    return line(width, colour) + " dt 2";
}

/** `type` is gnuplot's number: 6 circle, 7 filled circle, 9 triangle, 10 and 11 triangle
 * pointing down, open and filled. */
inline std::string marker(int type, double size, const char* colour) {
    return fmt::format("points pt {} ps {:g} lc rgb '{}'", type, size, colour);
}

}  // namespace brevold::plot
