#include "trace/mark_payload.h"

#include "base/text.h"

namespace brevold::trace {
namespace {

/** "name|value"; a layer's name may contain bars. */
MarkPayload parseCounter(std::string_view fields, TraceMark* mark) {
    mark->kind = TraceMark::Kind::Counter;
    const size_t bar = fields.rfind('|');
    mark->name = fields.substr(0, bar);
    const std::string_view value = bar < fields.size() ? fields.substr(bar + 1) : "";
    if (parseWhole(value, &mark->value)) return MarkPayload::Mark;
    // Web views also write "name|value|category", which no compositor does.
    const bool hasCategory = mark->name.find('|') != std::string_view::npos;
    return hasCategory ? MarkPayload::Other : MarkPayload::BadCounterValue;
}

}  // namespace

MarkPayload parseMarkPayload(std::string_view payload, TraceMark* mark) {
    const std::string_view type = takeUntil('|', &payload);
    if (type == "E") {
        mark->kind = TraceMark::Kind::End;
        return MarkPayload::Mark;
    }
    if (type != "B" && type != "C") return MarkPayload::Other;
    if (!parseWhole(takeUntil('|', &payload), &mark->pid)) return MarkPayload::Other;
    if (type == "C") return parseCounter(payload, mark);
    mark->kind = TraceMark::Kind::Begin;
    mark->name = payload;
    return MarkPayload::Mark;
}

}  // namespace brevold::trace
