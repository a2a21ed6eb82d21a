#include "trace/focused_layer.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "base/error.h"
#include "base/text.h"
#include "base/time_units.h"

namespace brevold::trace {
namespace {

constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view kPackageBytes =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.";

/** Returns the length of the longest text that both names contain. */
size_t commonLength(const std::string& a, const std::string& b) {
    std::vector<size_t> endingAt(b.size() + 1);
    size_t max = 0;
    for (const char c : a) {
        for (size_t i = b.size(); i-- > 0;) {
            endingAt[i + 1] = b[i] == c ? endingAt[i] + 1 : 0;
            max = std::max(max, endingAt[i + 1]);
        }
    }
    return max;
}

std::string listNames(const std::vector<Layer>& layers, const std::vector<size_t>& indices) {
    std::string list;
    for (const size_t i : indices)
        list += (list.empty() ? "'" : ", '") + layers[i].name + "'";
    return list;
}

std::string closestNames(const std::vector<Layer>& layers, std::vector<size_t> indices,
                         const std::string& name) {
    constexpr size_t kMaxNames = 3;
    std::stable_sort(indices.begin(), indices.end(), [&](size_t a, size_t b) {
        return commonLength(layers[a].name, name) > commonLength(layers[b].name, name);
    });
    indices.resize(std::min(indices.size(), kMaxNames));
    return listNames(layers, indices);
}

std::vector<size_t> layersWithFrames(const std::vector<Layer>& layers) {
    std::vector<size_t> indices;
    for (size_t i = 0; i < layers.size(); ++i) {
        if (layers[i].frames > 0) indices.push_back(i);
    }
    return indices;
}

/** Returns the applications' layers, or all of them if there are none. */
std::vector<size_t> preferredLayers(const std::vector<Layer>& layers,
                                    const std::vector<size_t>& indices) {
    std::vector<size_t> applications;
    std::copy_if(indices.begin(), indices.end(), std::back_inserter(applications),
                 [&](size_t i) { return isApplicationLayer(layers[i].name); });
    return applications.empty() ? indices : applications;
}

size_t namedLayer(const std::vector<Layer>& layers, const std::vector<size_t>& indices,
                  const std::string& name, const std::string& path) {
    enum class NameMatch : uint8_t { Whole, WithoutNumber, Part };
    for (const NameMatch match : {NameMatch::Whole, NameMatch::WithoutNumber, NameMatch::Part}) {
        std::vector<size_t> matches;
        std::copy_if(indices.begin(), indices.end(), std::back_inserter(matches), [&](size_t i) {
            const std::string& layer = layers[i].name;
            switch (match) {
                case NameMatch::Whole:
                    return layer == name;
                case NameMatch::WithoutNumber:
                    return layer.compare(0, layer.rfind('#'), name) == 0;
                case NameMatch::Part:
                    return layer.find(name) != std::string::npos;
            }
            return false;
        });
        if (matches.size() == 1) return matches.front();
        if (matches.size() > 1) {
            throw InputError(fmt::format("{}: several layers match '{}': {}", path, name,
                                         listNames(layers, matches)));
        }
    }
    throw InputError(fmt::format("{}: no layer '{}' has frames; the closest names are {}", path,
                                 name, closestNames(layers, indices, name)));
}

/** "com.example": at least two parts that begin with a letter. */
bool isPackage(std::string_view text) {
    int32_t parts = 0;
    while (!text.empty()) {
        const std::string_view part = takeUntil('.', &text);
        if (part.empty() || kLetters.find(part.front()) == std::string_view::npos) return false;
        ++parts;
    }
    return parts >= 2;
}

/** "com.example.Main", ".Main" or "_Main". */
bool beginsAsClass(std::string_view text) {
    return !text.empty() && (kLetters.find(text.front()) != std::string_view::npos ||
                             text.front() == '.' || text.front() == '_');
}

}  // namespace

bool isApplicationLayer(std::string_view name) {
    for (size_t slash = name.find('/'); slash != std::string_view::npos;
         slash = name.find('/', slash + 1)) {
        const std::string_view before = name.substr(0, slash);
        const size_t begin = before.find_last_not_of(kPackageBytes) + 1;
        if (isPackage(before.substr(begin)) && beginsAsClass(name.substr(slash + 1))) return true;
    }
    return false;
}

FocusedLayer findFocusedLayer(const std::vector<Layer>& layers,
                              const std::optional<std::string>& name, const std::string& path) {
    const std::vector<size_t> indices = layersWithFrames(layers);
    if (indices.empty()) {
        throw InputError(path + ": no layer has frames; record the trace with graphics events");
    }
    if (name) return {namedLayer(layers, indices, *name, path), {}};
    const auto hasFewerFrames = [&](size_t a, size_t b) {
        return layers[a].frames < layers[b].frames;
    };
    const std::vector<size_t> preferred = preferredLayers(layers, indices);
    const size_t focused = *std::max_element(preferred.begin(), preferred.end(), hasFewerFrames);
    const size_t max = *std::max_element(indices.begin(), indices.end(), hasFewerFrames);
    if (!hasFewerFrames(focused, max)) return {focused, {}};
    return {focused, max};
}

void followFocus(Timeline& timeline) {
    using Kind = TimelineEvent::Kind;
    const std::vector<size_t> layers =
            preferredLayers(timeline.layers, layersWithFrames(timeline.layers));
    std::vector<int32_t> frames(timeline.layers.size());
    std::vector<TimelineEvent> changes;
    std::optional<size_t> focus;
    int64_t second = 0;
    const auto endSecond = [&] {
        size_t max = focus.value_or(layers.front());
        for (const size_t layer : layers) {
            if (frames[layer] > frames[max]) max = layer;
        }
        if (frames[max] > 0 && max != focus) {
            if (focus) {
                changes.push_back({timeline.startNs + second * kNsPerSecond, Kind::Focus,
                                   static_cast<int32_t>(max), 0, 0, 0});
            } else {
                timeline.focusedLayer = max;
            }
            focus = max;
        }
        std::fill(frames.begin(), frames.end(), 0);
    };
    for (const TimelineEvent& event : timeline.events) {
        const int64_t current = (event.timeNs - timeline.startNs) / kNsPerSecond;
        if (current != second) endSecond();
        second = current;
        if (event.kind == Kind::Frame) ++frames[static_cast<size_t>(event.layer)];
    }
    endSecond();

    // Free the events as they are moved; of events of the same time, the change of the focus is
    // the first.
    std::deque<TimelineEvent> events;
    auto change = changes.begin();
    for (; !timeline.events.empty(); timeline.events.pop_front()) {
        const TimelineEvent& event = timeline.events.front();
        while (change != changes.end() && change->timeNs <= event.timeNs)
            events.push_back(*change++);
        events.push_back(event);
    }
    timeline.events = std::move(events);
}

}  // namespace brevold::trace
