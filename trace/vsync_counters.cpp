#include "trace/vsync_counters.h"

#include <algorithm>

namespace brevold::trace {
namespace {

constexpr std::pair<const char*, VsyncSource> kVsyncCounters[] = {
        {"VSYNC-sf", VsyncSource::VsyncSf}, {"VSYNC", VsyncSource::Vsync}};

/** "HW_VSYNC_<display id>", but not the on/off counter "HW_VSYNC_ON_<display id>". */
bool isHardwareVsync(std::string_view name) {
    constexpr std::string_view kPrefix = "HW_VSYNC_";
    return name.size() > kPrefix.size() && name.substr(0, kPrefix.size()) == kPrefix &&
           name.find_first_not_of("0123456789", kPrefix.size()) == std::string_view::npos;
}

}  // namespace

Vsyncs findVsyncs(const Compositor& compositor) {
    for (const auto& [name, source] : kVsyncCounters) {
        const Compositor::Values& toggles = compositor.changesOf(name);
        if (!toggles.empty()) return {source, toggles};
    }
    return {VsyncSource::None, {}};
}

std::vector<std::string> periodCounters(const Compositor& compositor) {
    const auto& tracks = compositor.tracks();
    std::vector<size_t> hardware;
    for (size_t i = 0; i < tracks.size(); ++i) {
        if (isHardwareVsync(tracks[i].name) && !compositor.changesOf(i).empty()) {
            hardware.push_back(i);
        }
    }
    std::stable_sort(hardware.begin(), hardware.end(), [&](size_t a, size_t b) {
        return compositor.changesOf(a).size() > compositor.changesOf(b).size();
    });
    std::vector<std::string> names = {"VSYNC-app", "VSYNC"};
    for (const size_t i : hardware)
        names.push_back(tracks[i].name);
    return names;
}

}  // namespace brevold::trace
