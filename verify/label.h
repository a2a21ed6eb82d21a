#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

namespace brevold::verify {

enum class Direction : uint8_t { Down, Up };

/** "[DOWN_SCALING]mode …", "[UP_SCALING]mode …": a decision for a frame, and its figures. */
struct DecisionLabel {
    Direction direction;
    int32_t mode;
    double scale;  // with six decimals; may be infinite or NaN
    int64_t headroomNs;
    int64_t intervalNs;    // between the queue times of this frame and the one before
    int64_t sinceStampNs;  // from the compositor's stamp to the queue time
    int32_t depth;
};

/** "[FM]gMode:…": the end of a measuring window. */
struct WindowLabel {
    int32_t mode;
    double fps;
    int32_t downs;
    int32_t ups;
    int32_t boosts;
};

/** "energyScaling[Scale:…]": a worker sends a DOWN or UP request. */
struct RequestLabel {
    double scale;  // with two decimals
};

/** "energyScaling[jank]": a worker sends a boost. */
struct BoostLabel {};

/** "energyScaling[jank]-rel": a worker sends the release of a boost. */
struct ReleaseLabel {};

/** The reason why a label of the library cannot be used. */
enum class LabelError : uint8_t {
    Cut,         // ends inside a label of a known form
    OutOfRange,  // has a number that does not fit its field
    Unknown,     // has another form
};

using Label = std::variant<LabelError, DecisionLabel, WindowLabel, RequestLabel, BoostLabel,
                           ReleaseLabel>;

/** Parses the label of a library section. Blanks between the fields may have any width. */
Label parseLabel(std::string_view text);

}  // namespace brevold::verify
