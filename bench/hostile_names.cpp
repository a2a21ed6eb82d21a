// hostile_names: prints the cost of layer names for the plain expression and for the library.

#include <chrono>
#include <cstdio>
#include <regex>
#include <string>

#include "brevold/brevold.h"

namespace {

constexpr size_t kMaxBytes = 65536;

std::string plainPackageName(const std::string& name) {
    const std::regex expression("(?:SurfaceView[-\\s\\t]+)?([^/]+).*#\\d+", std::regex::ECMAScript);
    std::smatch match;
    if (!std::regex_match(name, match, expression)) return {};
    return match[1].str();
}

struct Outcome {
    std::string text;
    double us;
};

/** Returns the fastest run, because other load only adds time. A slow name runs once. */
template <typename Fn>
Outcome run(Fn packageName, const std::string& name) {
    Outcome fastest = {"", 1e12};
    double spentUs = 0;
    for (int i = 0; i < 50 && spentUs < 50000; ++i) {
        const auto start = std::chrono::steady_clock::now();
        std::string text;
        try {
            const std::string package = packageName(name);
            text = package.empty() ? "no match" : std::to_string(package.size()) + " bytes";
        } catch (const std::regex_error&) {
            text = "THROWS";
        }
        const std::chrono::duration<double, std::micro> took =
                std::chrono::steady_clock::now() - start;
        spentUs += took.count();
        if (took.count() < fastest.us) fastest = {text, took.count()};
    }
    return fastest;
}

struct Row {
    const char* description;
    std::string name;
};

std::string filled(const std::string& begin, char fill, const std::string& end, size_t bytes) {
    return begin + std::string(bytes - begin.size() - end.size(), fill) + end;
}

}  // namespace

int main() {
    const Row rows[] = {
            {"ordinary", "SurfaceView - com.example.player/com.example.player.MainActivity#0"},
            {"separators, no end", filled("SurfaceView", '-', "", 211)},
            {"letters, no end", filled("", 'a', "", 5000)},
            {"separators, no end", filled("SurfaceView", '-', "", kMaxBytes)},
            {"blanks before a slash", filled("SurfaceView", ' ', "/#0", kMaxBytes)},
            {"separators, a package", filled("SurfaceView", '-', "a#0", kMaxBytes)},
            {"letters, no end", filled("", 'a', "", kMaxBytes)},
            {"digits", filled("a#", '0', "", kMaxBytes)},
            {"digits, no sign", filled("a/", '0', "", kMaxBytes)},
            {"signs", filled("", '#', "0", kMaxBytes)},
            {"slashes", filled("a", '/', "#0", kMaxBytes)},
            {"a line end after the slash", filled("a/", 'b', "\n#0", kMaxBytes)},
            {"line ends", filled("", '\n', "#0", kMaxBytes)},
            {"zero bytes", filled("", '\0', "#0", kMaxBytes)},
    };
    printf("%-27s %6s | %-12s %10s | %-12s %8s %8s\n", "name", "bytes", "expression", "us",
           "library", "us", "ratio");
    for (const Row& row : rows) {
        const Outcome plain = run(plainPackageName, row.name);
        const Outcome library = run(android::getPackageName, row.name);
        const Outcome matching =
                run(android::getPackageName,
                    filled("com.example.game/", 'a', "#0", std::max<size_t>(row.name.size(), 20)));
        printf("%-27s %6zu | %-12s %10.1f | %-12s %8.1f %8.2f\n", row.description, row.name.size(),
               plain.text.c_str(), plain.us, library.text.c_str(), library.us,
               library.us / matching.us);
    }
    printf("ratio: library to library on a matching name of the same length\n");
}
