#pragma once

/** The tables that the benchmark prints, in this order; false where a target is missed. */
namespace brevold::bench {

bool printCosts();
void printMemory();
void printGrowth();
bool printSlowService();

}  // namespace brevold::bench
