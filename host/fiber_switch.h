#pragma once

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define BREVOLD_ASAN 1
#endif
#if __has_feature(thread_sanitizer)
#define BREVOLD_TSAN 1
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define BREVOLD_ASAN 1
#endif
#ifdef __SANITIZE_THREAD__
#define BREVOLD_TSAN 1
#endif

#ifdef BREVOLD_ASAN
#include <sanitizer/common_interface_defs.h>
#endif
#ifdef BREVOLD_TSAN
#include <sanitizer/tsan_interface.h>
#endif

namespace brevold::host {

/**
 * Announces the switches between the main thread's stack and one fiber's to the sanitizers. Call
 * each function next to the switch, on the stack that its name implies. Without sanitizers they do
 * nothing.
 */
class FiberSwitch {
  public:
#ifdef BREVOLD_ASAN
    void beforeEntering(const void* stackTop, size_t stackBytes) {
        __sanitizer_start_switch_fiber(&mMainFakeStack,
                                       static_cast<const char*>(stackTop) - stackBytes, stackBytes);
    }
    void afterEntering() {
        __sanitizer_finish_switch_fiber(mFiberFakeStack, &mMainBottom, &mMainBytes);
    }
    void beforeLeaving(bool isLast) {
        __sanitizer_start_switch_fiber(isLast ? nullptr : &mFiberFakeStack, mMainBottom,
                                       mMainBytes);
    }
    void afterLeaving() {
        __sanitizer_finish_switch_fiber(mMainFakeStack, nullptr, nullptr);
    }

  private:
    void* mMainFakeStack = nullptr;
    void* mFiberFakeStack = nullptr;
    const void* mMainBottom = nullptr;
    size_t mMainBytes = 0;
#elif defined(BREVOLD_TSAN)
    void beforeEntering(const void*, size_t) {
        mMain = __tsan_get_current_fiber();
        if (mFiber == nullptr) mFiber = __tsan_create_fiber(0);
        __tsan_switch_to_fiber(mFiber, 0);
    }
    void afterEntering() {}
    void beforeLeaving(bool) {
        __tsan_switch_to_fiber(mMain, 0);
    }
    void afterLeaving() {}

  private:
    void* mMain = nullptr;
    void* mFiber = nullptr;
#else
    void beforeEntering(const void*, size_t) {}
    void afterEntering() {}
    void beforeLeaving(bool) {}
    void afterLeaving() {}
#endif
};

}  // namespace brevold::host
