#pragma once

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <string>

namespace brevold::replay {

/** printf into a string; what goes beyond 1023 characters is cut. */
__attribute__((format(printf, 1, 2))) inline std::string format(const char* pattern, ...) {
    char text[1024];
    va_list args;
    va_start(args, pattern);
    vsnprintf(text, sizeof(text), pattern, args);
    va_end(args);
    return text;
}

inline double toSeconds(int64_t ns) {
    return static_cast<double>(ns) / 1e9;
}

}  // namespace brevold::replay
