#pragma once

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace android {

/** Reads the text of a switch. */
inline bool isOn(const char* text) {
    return atoi(text) == 1;
}

/** Returns true if the text of kDebugLayersProperty is a list. */
constexpr bool isLayerList(std::string_view text) {
    return text.substr(0, 4) != "NONE";
}

/** Appends the names of a list; a single blank separates two names. */
inline void splitLayerList(std::string_view list, std::vector<std::string>& names) {
    while (!list.empty()) {
        const size_t end = list.find(' ');
        names.emplace_back(list.substr(0, end));
        list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
    }
}

}  // namespace android
