#include "verify/pairing.h"

#include <algorithm>
#include <cstdlib>

namespace brevold::verify {

namespace {

/** The nearest frames to a time: of all, and of those on a thread. */
class NearestFrame {
  public:
    NearestFrame(const std::vector<ExpectedFrame>& frames, int64_t timeNs, int32_t tid)
          : mFrames(frames), mTimeNs(timeNs), mTid(tid) {
        const auto next = std::lower_bound(
                frames.begin(), frames.end(), timeNs,
                [](const ExpectedFrame& frame, int64_t ns) { return frame.timeNs < ns; });
        const auto after = static_cast<size_t>(next - frames.begin());
        for (size_t i = after; i < frames.size() && isInReach(i); ++i)
            visit(i);
        for (size_t i = after; i-- > 0 && isInReach(i);)
            visit(i);
    }

    std::optional<size_t> frame() const { return mOnThread ? mOnThread : mOnAny; }

  private:
    int64_t distanceNs(size_t i) const { return std::abs(mFrames[i].timeNs - mTimeNs); }
    bool isInReach(size_t i) const { return distanceNs(i) <= mFrames[i].periodNs; }

    void visit(size_t i) {
        const auto take = [&](std::optional<size_t>& nearest) {
            if (!nearest || distanceNs(i) < distanceNs(*nearest)) nearest = i;
        };
        take(mOnAny);
        if (mFrames[i].tid == mTid) take(mOnThread);
    }

    const std::vector<ExpectedFrame>& mFrames;
    const int64_t mTimeNs;
    const int32_t mTid;
    std::optional<size_t> mOnThread;
    std::optional<size_t> mOnAny;
};

}  // namespace

Pairing pairDecisions(const std::vector<ExpectedFrame>& frames, const LibraryMarks& recorded) {
    Pairing pairing;
    pairing.frames.resize(frames.size());
    for (const DecisionMark& mark : recorded.decisions) {
        const std::optional<size_t> frame = NearestFrame(frames, mark.timeNs, mark.tid).frame();
        if (frame && pairing.frames[*frame].recorded == nullptr) {
            pairing.frames[*frame].recorded = &mark;
        } else {
            pairing.extras.push_back({&mark, frame});
        }
    }
    for (const UnreadableMark& mark : recorded.unreadable) {
        const std::optional<size_t> frame = NearestFrame(frames, mark.timeNs, mark.tid).frame();
        if (frame) pairing.frames[*frame].isUnreadable = true;
    }
    return pairing;
}

}  // namespace brevold::verify
