#include <cstdio>
#include <exception>

#include "bench/device.h"
#include "bench/tables.h"

int main() {
    try {
        brevold::bench::startDevice();
        bool isMet = brevold::bench::printCosts();
        isMet = brevold::bench::printSlowService() && isMet;
        brevold::bench::printMemory();
        brevold::bench::printGrowth();
        return isMet ? 0 : 1;
    } catch (const std::exception& error) {
        fprintf(stderr, "brevold-bench: %s\n", error.what());
        return 2;
    }
}
