#include "trace/counter_role.h"

namespace brevold::trace {
namespace {

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
        {Match::Whole, kSetPeriodCounter, CounterRole::SetPeriod},
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

}  // namespace

CounterRole roleOf(std::string_view counter) {
    for (const NamePattern& pattern : kNamePatterns) {
        if (matches(pattern, counter)) return pattern.role;
    }
    return CounterRole::Candidate;
}

}  // namespace brevold::trace
