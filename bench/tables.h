#pragma once

/** Print the benchmark's tables, in this order. Return false if a target is missed. */
namespace brevold::bench {

bool printCosts();
void printMemory();
void printGrowth();
bool printSlowService();

}  // namespace brevold::bench
