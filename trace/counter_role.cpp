#include "trace/counter_role.h"

#include "base/text.h"

namespace brevold::trace {
namespace {

constexpr std::string_view kPredictedPeriod = "VSP-period";

struct NamePattern {
    enum class Match : uint8_t { Whole, Prefix, Suffix } match;
    std::string_view text;
    CounterRole role;
};

// The first match decides.
using Match = NamePattern::Match;
constexpr NamePattern kNamePatterns[] = {
        {Match::Prefix, kBufferTxPrefix, CounterRole::BufferTx},
        {Match::Prefix, "VSYNC", CounterRole::Vsync},
        {Match::Prefix, "HW_VSYNC", CounterRole::Vsync},
        {Match::Whole, "VSR-setPeriod", CounterRole::SetPeriod},
        {Match::Prefix, "VSR-", CounterRole::Unrelated},
        {Match::Prefix, "VSP-", CounterRole::Unrelated},
        {Match::Suffix, " fps", CounterRole::Unrelated},
        {Match::Suffix, " duration", CounterRole::Unrelated},
        {Match::Prefix, "aq:", CounterRole::Unrelated},
        {Match::Prefix, "oq:", CounterRole::Unrelated},
        {Match::Prefix, "wq:", CounterRole::Unrelated},
        {Match::Whole, "iq", CounterRole::Unrelated},
        {Match::Suffix, "FrameMissed", CounterRole::Unrelated},
        {Match::Prefix, "PrevFrame", CounterRole::Unrelated},
        {Match::Whole, "TransactionQueue", CounterRole::Unrelated},
        {Match::Whole, "LumaSamplingStep", CounterRole::Unrelated},
        {Match::Prefix, "FramebufferSurface", CounterRole::Unrelated},
        {Match::Prefix, "VirtualDisplaySurface", CounterRole::Unrelated},
};

bool matches(const NamePattern& pattern, std::string_view name) {
    const size_t length = pattern.text.size();
    if (name.size() < length) return false;
    switch (pattern.match) {
        case Match::Whole:
            return name == pattern.text;
        case Match::Prefix:
            return name.substr(0, length) == pattern.text;
        case Match::Suffix:
            return name.substr(name.size() - length) == pattern.text;
    }
    return false;
}

/** "60fps" */
bool isRate(std::string_view name) {
    constexpr std::string_view kUnit = "fps";
    const size_t digits = name.find_first_not_of("0123456789");
    return digits != 0 && digits != std::string_view::npos && name.substr(digits) == kUnit;
}

/** Removes the display's id, as in "VSP-period 4619827259835644672". */
std::string_view withoutDisplay(std::string_view name) {
    const std::string_view text = name.substr(0, name.size() - displayIdOf(name).size());
    return trimEnd(text);
}

bool isDisplayMode(std::string_view name) {
    constexpr std::string_view kPrefix = "VSR-";
    return name.substr(0, kPrefix.size()) == kPrefix && !displayIdOf(name).empty() &&
           name.find("DisplayMode") != std::string_view::npos;
}

}  // namespace

CounterRole roleOf(std::string_view counter) {
    if (isDisplayMode(counter)) return CounterRole::DisplayMode;
    if (withoutDisplay(counter) == kPredictedPeriod) return CounterRole::PredictedPeriod;
    if (isRate(counter)) return CounterRole::Unrelated;
    for (const NamePattern& pattern : kNamePatterns) {
        if (matches(pattern, counter)) return pattern.role;
    }
    return CounterRole::Candidate;
}

std::string_view displayIdOf(std::string_view counter) {
    const size_t last = counter.find_last_not_of("0123456789");
    const bool isSeparated =
            last != std::string_view::npos && (counter[last] == ' ' || counter[last] == '_');
    return isSeparated ? counter.substr(last + 1) : std::string_view();
}

}  // namespace brevold::trace
