// Layer names: the library finds the same package as the plain expression on the whole name.

#include <regex>

#include "brevold/brevold.h"
#include "fuzz/fuzz.h"

/** Up to this length the expression never exceeds its limit of 4096 steps per byte. */
constexpr size_t kMaxComparedBytes = 64;
constexpr size_t kMaxBytes = 65536;
constexpr char kRun = '\x01';
constexpr char kWord = '\x02';

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::regex expression("(?:SurfaceView[-\\s\\t]+)?([^/]+).*#\\d+");
    // The name is the input, except that two bytes expand to text that mutation rarely finds.
    std::string name;
    for (size_t i = 0; i < size && name.size() < kMaxBytes; ++i) {
        const char c = static_cast<char>(data[i]);
        if (c == kRun && i + 2 < size) {
            name.append(size_t{1} << (data[i + 1] % 16), static_cast<char>(data[i + 2]));
            i += 2;
        } else {
            name += c == kWord ? "SurfaceView" : std::string(1, c);
        }
    }
    const std::string package = android::getPackageName(name);
    if (name.size() > kMaxComparedBytes) return 0;
    std::smatch match;
    const bool isMatch = std::regex_match(name, match, expression);
    brevold::fuzz::require(package == (isMatch ? match[1].str() : ""), "the expression's package");
    return 0;
}
