#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace brevold {

/**
 * A progress bar on standard error, if that is a terminal. It appears when the work has taken a
 * second, and disappears in the destructor. While one exists, further ones show nothing, also in
 * forked processes. One thread.
 */
class Progress {
  public:
    /** `word` names the work; `total` is the final value of update(), in any unit. */
    Progress(std::string word, int64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /** Cheap enough to call for every event. */
    void update(int64_t done);

  private:
    using Clock = std::chrono::steady_clock;

    void draw(int64_t done);

    const bool mIsFirst;
    const std::string mWord;
    const int64_t mTotal;
    const int64_t mStep;
    int64_t mNextCheck = 0;
    Clock::time_point mNextDraw;
    bool mIsDrawn = false;
};

}  // namespace brevold
