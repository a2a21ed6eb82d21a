#pragma once

#include <cstddef>

#ifdef __SANITIZE_ADDRESS__
#define BREVOLD_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define BREVOLD_ASAN 1
#endif
#endif

#ifdef BREVOLD_ASAN
#include <sanitizer/common_interface_defs.h>
#endif

namespace brevold::host {

/**
 * Announces the switches between the main thread's stack and one fiber's to the address sanitizer.
 * Call each function next to the switch, on the stack that its name implies. Without this sanitizer
 * they do nothing. The thread sanitizer needs no announcement: all fibers run in one thread.
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
#else
    void beforeEntering(const void*, size_t) {}
    void afterEntering() {}
    void beforeLeaving(bool) {}
    void afterLeaving() {}
#endif
};

}  // namespace brevold::host
