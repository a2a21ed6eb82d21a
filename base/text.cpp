#include "base/text.h"

namespace brevold {

std::string quote(std::string_view text) {
    constexpr size_t kMaxLength = 60;
    std::string quoted(text.substr(0, kMaxLength));
    std::replace_if(
            quoted.begin(), quoted.end(), [](char c) { return c >= 0 && c < ' '; }, '?');
    return "'" + quoted + (text.size() > kMaxLength ? "...'" : "'");
}

}  // namespace brevold
