#include "report/layer_list.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <set>
#include <vector>

#include "base/time_units.h"

namespace brevold::report {

void printLayerList(const std::string& trace, const trace::Timeline& timeline, std::ostream& out) {
    std::set<size_t> focused = {timeline.focusedLayer};
    for (const trace::TimelineEvent& event : timeline.events) {
        if (event.kind == trace::TimelineEvent::Kind::Focus) {
            focused.insert(static_cast<size_t>(event.layer));
        }
    }
    std::vector<size_t> layers;
    for (size_t i = 0; i < timeline.layers.size(); ++i) {
        if (timeline.layers[i].frames > 0) layers.push_back(i);
    }
    std::stable_sort(layers.begin(), layers.end(), [&](size_t a, size_t b) {
        return timeline.layers[a].frames > timeline.layers[b].frames;
    });
    fmt::print(out, "{}, {:.2f} s\n", trace, toSeconds(timeline.endNs - timeline.startNs));
    fmt::print(out, "{:>7} {:>10} {:>10}  {}\n", "frames", "first/s", "last/s", "layer");
    for (const size_t i : layers) {
        const trace::Layer& layer = timeline.layers[i];
        fmt::print(out, "{:7} {:10.3f} {:10.3f}  {}{}\n", layer.frames,
                   toSeconds(layer.firstFrameNs - timeline.startNs),
                   toSeconds(layer.lastFrameNs - timeline.startNs), layer.name,
                   focused.count(i) != 0 ? " (focused)" : "");
    }
}

}  // namespace brevold::report
