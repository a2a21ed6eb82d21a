// Every source of a mutated build includes this file first.
#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

namespace mutation {

struct State {
    /** The number of the change that the process makes, from 1, or 0. */
    int active = 0;
    /** A byte for each change, or null. Child processes write to the same bytes. */
    char* reached = nullptr;
};

inline const State gState = [] {
    State state;
    if (const char* number = getenv("MUTATION")) state.active = atoi(number);
    if (const char* path = getenv("MUTATION_REACHED")) {
        const int file = open(path, O_RDWR);
        const auto bytes = static_cast<size_t>(lseek(file, 0, SEEK_END));
        void* const map = mmap(nullptr, bytes, PROT_WRITE, MAP_SHARED, file, 0);
        close(file);
        if (map == MAP_FAILED) abort();
        state.reached = static_cast<char*>(map);
    }
    return state;
}();

/** Returns true if the process makes the change, and records that it was reached. */
inline bool on(int number) {
    if (gState.reached != nullptr) gState.reached[number] = 1;
    return gState.active == number;
}

}  // namespace mutation
