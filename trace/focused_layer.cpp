#include "trace/focused_layer.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/error.h"

namespace brevold::trace {
namespace {

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

std::string closestNames(std::vector<Layer> layers, const std::string& name) {
    constexpr size_t kMaxNames = 3;
    std::stable_sort(layers.begin(), layers.end(), [&](const Layer& a, const Layer& b) {
        return commonLength(a.name, name) > commonLength(b.name, name);
    });
    std::string list;
    for (size_t i = 0; i < std::min(layers.size(), kMaxNames); ++i) {
        list += (i > 0 ? ", '" : "'") + layers[i].name + "'";
    }
    return list;
}

}  // namespace

size_t findFocusedLayer(const std::vector<Layer>& layers, const std::optional<std::string>& name,
                        const std::string& path) {
    if (layers.empty()) {
        throw InputError(path + ": no layer has frames; record the trace with graphics events");
    }
    auto focused =
            std::max_element(layers.begin(), layers.end(),
                             [](const Layer& a, const Layer& b) { return a.frames < b.frames; });
    if (name) {
        focused = std::find_if(layers.begin(), layers.end(), [&](const Layer& layer) {
            return layer.name == *name || layer.name == *name + "#0";
        });
    }
    if (focused == layers.end()) {
        throw InputError(fmt::format("{}: no layer '{}' has frames; the closest names are {}", path,
                                     *name, closestNames(layers, *name)));
    }
    return static_cast<size_t>(focused - layers.begin());
}

}  // namespace brevold::trace
