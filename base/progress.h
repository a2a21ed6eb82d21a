#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace brevold {

/**
 * A bar on standard error for work that takes longer than a second; none where that is no terminal.
 * It goes away with the object.
 */
class Progress {
  public:
    /** The word says what is done; the total is what done comes to at the end, in any unit. */
    Progress(std::string word, int64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /** Cheap enough for every event. */
    void update(int64_t done);

  private:
    using Clock = std::chrono::steady_clock;

    void draw(int64_t done);

    const std::string mWord;
    const int64_t mTotal;
    const int64_t mStep;
    int64_t mNextLook = 0;
    Clock::time_point mNextDraw;
    bool mIsDrawn = false;
};

}  // namespace brevold
