#include "trace/unreadable_format.h"

#include <algorithm>

#include "base/error.h"

namespace brevold::trace {
namespace {

using namespace std::string_view_literals;

constexpr const char* kRecordAgain = "record a Perfetto trace or use atrace";

struct Format {
    std::string_view magic;  // a '?' stands for any byte
    const char* name;
    const char* remedy;
};

constexpr Format kFormats[] = {
        {"\x17\x08\x44tracing"sv, "a trace-cmd file", "convert it with 'trace-cmd report'"},
        {"*version\n"sv, "an ART method trace", kRecordAgain},
        {"SLOW?\0"sv, "an ART method trace", kRecordAgain},
        {"\xfd\x37zXZ\0"sv, "xz data", "decompress it with 'xz -d'"},
        {"\x28\xb5\x2f\xfd"sv, "zstd data", "decompress it with 'zstd -d'"},
        {"BZh?1AY&SY"sv, "bzip2 data", "decompress it with 'bzip2 -d'"},
        {"\xff\xfe"sv, "UTF-16 text", "convert it with 'iconv -f UTF-16 -t UTF-8'"},
        {"\xfe\xff"sv, "UTF-16 text", "convert it with 'iconv -f UTF-16 -t UTF-8'"},
};
constexpr Format kUtf16LittleEndian = {
        {}, "UTF-16 text", "convert it with 'iconv -f UTF-16LE -t UTF-8'"};
constexpr Format kUtf16BigEndian = {
        {}, "UTF-16 text", "convert it with 'iconv -f UTF-16BE -t UTF-8'"};
constexpr Format kJson = {
        {},
        "a JSON trace",
        "give the Perfetto trace itself, or convert it with 'traceconv systrace'"};
constexpr Format kWinscope = {{}, "a winscope trace", kRecordAgain};

bool hasMagic(std::string_view head, std::string_view magic) {
    return head.size() >= magic.size() &&
           std::equal(magic.begin(), magic.end(), head.begin(),
                      [](char expected, char byte) { return expected == '?' || expected == byte; });
}

/** Without a byte-order mark: returns true if the first characters are ASCII. */
bool isUtf16(std::string_view head, size_t zeroOffset) {
    constexpr size_t kBytes = 8;
    if (head.size() < kBytes) return false;
    for (size_t i = 0; i < kBytes; ++i) {
        if ((head[i] == '\0') != (i % 2 == zeroOffset)) return false;
    }
    return true;
}

/** An array of objects, or an object with a name: {"traceEvents":[ */
bool isJson(std::string_view head) {
    constexpr std::string_view kJsonBlanks = " \t\r\n";
    const size_t first = head.find_first_not_of(kJsonBlanks);
    if (first == std::string_view::npos) return false;
    const size_t second = head.find_first_not_of(kJsonBlanks, first + 1);
    if (second == std::string_view::npos) return false;
    return (head[first] == '{' && head[second] == '"') ||
           (head[first] == '[' && head[second] == '{');
}

/** Protobuf whose first field is a fixed number of 8 letters, such as LYRTRACE. */
bool isWinscope(std::string_view head) {
    constexpr size_t kMagicEnd = 9;
    return head.size() > kMagicEnd && head[0] == '\t' &&
           std::all_of(head.begin() + 1, head.begin() + kMagicEnd,
                       [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

const Format* unreadableFormat(std::string_view head) {
    const auto* const found =
            std::find_if(std::begin(kFormats), std::end(kFormats),
                         [head](const Format& format) { return hasMagic(head, format.magic); });
    if (found != std::end(kFormats)) return found;
    if (isUtf16(head, 1)) return &kUtf16LittleEndian;
    if (isUtf16(head, 0)) return &kUtf16BigEndian;
    if (isJson(head)) return &kJson;
    if (isWinscope(head)) return &kWinscope;
    return nullptr;
}

}  // namespace

void requireReadable(std::string_view head, const std::string& name) {
    const Format* const format = unreadableFormat(head);
    if (format == nullptr) return;
    throw InputError(name + ": expected a trace, got " + format->name + "; " + format->remedy);
}

}  // namespace brevold::trace
