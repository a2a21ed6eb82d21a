#include "trace/event_line.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "base/text.h"

namespace brevold::trace {
namespace {

constexpr int64_t kMaxSecond = 9'000'000'000;
constexpr int64_t kFractionScaleNs[] = {1'000'000'000, 100'000'000, 10'000'000, 1'000'000, 100'000,
                                        10'000,        1'000,       100,        10,        1};
constexpr std::string_view kHeader = "# tracer";
constexpr std::string_view kDigits = "0123456789";

/** Parses a number of at most 18 digits. Each line has four, for which parseWhole() is slow. */
template <typename T>
bool parseDigits(std::string_view text, T* number) {
    constexpr size_t kMaxDigits = 18;
    if (text.empty() || text.size() > kMaxDigits) return false;
    int64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + (c - '0');
    }
    *number = static_cast<T>(value);
    return value <= std::numeric_limits<T>::max();
}

/** "TASK-TID" or "TASK-TID (TGID)". The task may contain any character. */
bool parseThread(std::string_view text, EventLine* line) {
    text = trimEnd(text);
    line->hasProcess = !text.empty() && text.back() == ')';
    if (line->hasProcess) {
        const size_t open = text.rfind('(');
        if (open == std::string_view::npos) return false;
        line->process = trimStart(text.substr(open + 1, text.size() - open - 2));
        text = trimEnd(text.substr(0, open));
    }
    const size_t dash = text.rfind('-');
    if (dash == std::string_view::npos) return false;
    line->task = trimStart(text.substr(0, dash));
    return parseDigits(text.substr(dash + 1), &line->tid);
}

bool parseTime(std::string_view text, EventLine* line) {
    const std::string_view seconds = takeUntil('.', &text);
    int64_t second;
    int64_t fraction;
    if (text.size() >= std::size(kFractionScaleNs) || !parseDigits(seconds, &second) ||
        second > kMaxSecond || !parseDigits(text, &fraction)) {
        return false;
    }
    line->decimals = static_cast<int32_t>(text.size());
    line->timeNs = second * kFractionScaleNs[0] + fraction * kFractionScaleNs[text.size()];
    return true;
}

/** "TIME: EVENT" or "FLAGS TIME: EVENT". */
bool parseTimeAndEvent(std::string_view text, EventLine* line) {
    std::string_view time = trimEnd(takeUntil(':', &text));
    std::string_view flags = time;
    while (!flags.empty() && !isBlank(flags.back()))
        flags.remove_suffix(1);
    time.remove_prefix(flags.size());
    flags = trimStart(trimEnd(flags));
    line->hasFlags = !flags.empty();
    if (std::any_of(flags.begin(), flags.end(), isBlank)) return false;
    line->event = trimStart(text);
    return parseTime(time, line);
}

}  // namespace

// Android 4.1 and 4.2, Android 5 to 9, and Android 10 and later:
//   SurfaceFlinger-112   [000] 50260.929925: 0: C|112|com.example.chess/com.example.chess.Board|1
//   RenderThread-3487  ( 3471) [002] ...1  1432.517204: tracing_mark_write: B|3471|queueBuffer
//   binder:712_3-1406  (  712) [006] d..3 8341.220197: print: C|712|BufferTX - board#318|2
bool parseEventLine(std::string_view text, EventLine* line) {
    text = trimEnd(text);
    if (isBlankOrComment(text)) return false;
    // A task may contain brackets too, and the first pair may not be the processor's.
    for (size_t open = text.find('['); open != std::string_view::npos;
         open = text.find('[', open + 1)) {
        const size_t close = text.find_first_not_of(kDigits, open + 1);
        if (close == std::string_view::npos) return false;
        if (text[close] == ']' &&
            parseDigits(text.substr(open + 1, close - open - 1), &line->processor) &&
            parseThread(text.substr(0, open), line)) {
            return parseTimeAndEvent(text.substr(close + 1), line);
        }
    }
    return false;
}

bool isBlankOrComment(std::string_view text) {
    text = trimEnd(text);
    return text.empty() || text.front() == '#';
}

bool beginsAsFtrace(std::string_view head) {
    while (!head.empty()) {
        const std::string_view text = takeUntil('\n', &head);
        EventLine line;
        if (text.substr(0, kHeader.size()) == kHeader || parseEventLine(text, &line)) return true;
    }
    return false;
}

}  // namespace brevold::trace
