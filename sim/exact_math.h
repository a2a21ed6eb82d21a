#pragma once

namespace brevold::sim {

// Functions of libm may differ in their last bit between processors and C libraries. These use only
// operations that IEEE 754 defines exactly, so a simulation gives the same bytes everywhere.

/** 2 to the power of x, for |x| up to 1000. */
double exp2Exact(double x);

/** e to the power of x, for |x| up to 700. */
double expExact(double x);

/** Natural logarithm of x > 0. */
double logExact(double x);

}  // namespace brevold::sim
