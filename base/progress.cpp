#include "base/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <utility>

namespace brevold {
namespace {

constexpr std::chrono::seconds kDelay(1);
constexpr std::chrono::milliseconds kDrawInterval(100);
constexpr int64_t kWidth = 40;
constexpr int64_t kMaxChecks = 1000;

bool gExists = false;

}  // namespace

Progress::Progress(std::string word, int64_t total)
      : mIsFirst(!std::exchange(gExists, true)),
        mWord(std::move(word)),
        mTotal(std::max<int64_t>(total, 1)),
        mStep(std::max<int64_t>(mTotal / kMaxChecks, 1)),
        mNextDraw(Clock::now() + kDelay) {
    if (!mIsFirst || isatty(STDERR_FILENO) == 0) mNextCheck = std::numeric_limits<int64_t>::max();
}

Progress::~Progress() {
    if (mIsFirst) gExists = false;
    if (mIsDrawn) fputs("\r\033[K", stderr);
}

void Progress::update(int64_t done) {
    if (done < mNextCheck) return;
    mNextCheck = done + mStep;
    const Clock::time_point now = Clock::now();
    if (now < mNextDraw) return;
    mNextDraw = now + kDrawInterval;
    draw(done);
}

void Progress::draw(int64_t done) {
    const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(mTotal));
    const auto filled = static_cast<size_t>(share * kWidth);
    const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
    fprintf(stderr, "\r%s [%s] %3.0f %%", mWord.c_str(), bar.c_str(), share * 100.0);
    mIsDrawn = true;
}

}  // namespace brevold
