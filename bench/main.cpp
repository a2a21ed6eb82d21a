#include "bench/device.h"
#include "bench/tables.h"

int main() {
    brevold::bench::startDevice();
    bool isMet = brevold::bench::printCosts();
    isMet = brevold::bench::printSlowService() && isMet;
    brevold::bench::printMemory();
    brevold::bench::printGrowth();
    return isMet ? 0 : 1;
}
