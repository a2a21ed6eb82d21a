#include "verify/label.h"

#include <cstdlib>
#include <string>

#include "base/text.h"

namespace brevold::verify {

namespace {

/** The longest scale, that of the largest float, has 39 digits before the point. */
constexpr size_t kMaxNumberLength = 64;

/** Takes fields from the front of a label. After the first error, all further calls do nothing. */
class FieldReader {
  public:
    explicit FieldReader(std::string_view text) : mRest(text) {}

    /** Takes a fixed text, and blanks before it. */
    void take(std::string_view word) {
        if (mError) return;
        mRest = trimStart(mRest);
        if (mRest.substr(0, word.size()) == word) {
            mRest.remove_prefix(word.size());
        } else {
            const bool isCut = word.substr(0, mRest.size()) == mRest;
            mError = isCut ? LabelError::Cut : LabelError::Unknown;
        }
    }

    /** Takes a number, which ends at a blank or at `terminator`, and blanks before it. */
    template <typename Number>
    Number number(char terminator = '\0') {
        if (mError) return {};
        mRest = trimStart(mRest);
        const size_t end =
                terminator == '\0' ? mRest.find_first_of(kBlanks) : mRest.find(terminator);
        const bool isLast = end == std::string_view::npos;
        const std::string_view digits = mRest.substr(0, end);
        mRest.remove_prefix(digits.size());
        Number value = {};
        if (digits.empty() || (isLast && terminator != '\0')) {
            mError = LabelError::Cut;
        } else {
            mError = parse(digits, &value);
        }
        return value;
    }

    /** Returns the parsed label, or the error if there was one or text is left. */
    Label finish(const Label& label) const {
        if (mError) return *mError;
        return trimStart(mRest).empty() ? label : Label(LabelError::Unknown);
    }

  private:
    static std::optional<LabelError> parse(std::string_view digits, double* value) {
        if (digits.size() > kMaxNumberLength) return LabelError::OutOfRange;
        // libc++ has no from_chars for floating-point numbers.
        const std::string text(digits);
        char* end = nullptr;
        *value = strtod(text.c_str(), &end);
        const bool isDecimal = text.find_first_of("xXeEpP") == std::string::npos;
        if (!isDecimal || end != text.c_str() + text.size()) return LabelError::Unknown;
        return {};
    }

    template <typename Integer>
    static std::optional<LabelError> parse(std::string_view digits, Integer* value) {
        if (parseWhole(digits, value)) return {};
        const bool isNumber = digits.find_first_not_of("0123456789", digits[0] == '-' ? 1 : 0) ==
                              std::string_view::npos;
        if (digits == "-") return LabelError::Cut;
        return isNumber ? LabelError::OutOfRange : LabelError::Unknown;
    }

    std::string_view mRest;
    std::optional<LabelError> mError;
};

// [DOWN_SCALING]mode 	2 	scale 	0.312500  …  	headRoom 	28333332 	diffQB
// 16666666
//     	diffSFToQB  …  	3000000 	lastMaxQueuedFrames 	2
Label parseDecision(Direction direction, std::string_view text) {
    DecisionLabel label = {};
    FieldReader fields(text);
    label.direction = direction;
    fields.take(direction == Direction::Down ? "[DOWN_SCALING]mode" : "[UP_SCALING]mode");
    label.mode = fields.number<int32_t>();
    fields.take("scale");
    label.scale = fields.number<double>();
    fields.take("headRoom");
    label.headroomNs = fields.number<int64_t>();
    fields.take("diffQB");
    label.intervalNs = fields.number<int64_t>();
    fields.take("diffSFToQB");
    label.sinceStampNs = fields.number<int64_t>();
    fields.take("lastMaxQueuedFrames");
    label.depth = fields.number<int32_t>();
    return fields.finish(label);
}

// [FM]gMode:2 	FPS:	59.98 	Down:	60 	Up:	0  …  	Idle:	0
Label parseWindow(std::string_view text) {
    WindowLabel label = {};
    FieldReader fields(text);
    fields.take("[FM]gMode:");
    label.mode = fields.number<int32_t>();
    fields.take("FPS:");
    label.fps = fields.number<double>();
    fields.take("Down:");
    label.downs = fields.number<int32_t>();
    fields.take("Up:");
    label.ups = fields.number<int32_t>();
    fields.take("Idle:");
    label.boosts = fields.number<int32_t>();
    return fields.finish(label);
}

// energyScaling[Scale:0.31], energyScaling[jank], energyScaling[jank]-rel
Label parseWorkerSection(std::string_view text) {
    if (text == "energyScaling[jank]") return BoostLabel{};
    if (text == "energyScaling[jank]-rel") return ReleaseLabel{};
    RequestLabel label = {};
    FieldReader fields(text);
    fields.take("energyScaling[Scale:");
    label.scale = fields.number<double>(']');
    fields.take("]");
    return fields.finish(label);
}

bool beginsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

}  // namespace

Label parseLabel(std::string_view text) {
    if (beginsWith(text, "[DOWN_")) return parseDecision(Direction::Down, text);
    if (beginsWith(text, "[UP_")) return parseDecision(Direction::Up, text);
    if (beginsWith(text, "[FM]")) return parseWindow(text);
    return parseWorkerSection(text);
}

}  // namespace brevold::verify
