#include "sim/exact_math.h"

#include <cmath>

namespace brevold::sim {

namespace {

constexpr double kLn2 = 0.693147180559945309417;
constexpr double kSqrtHalf = 0.707106781186547524401;

}  // namespace

double exp2Exact(double x) {
    constexpr int kTerms = 15;
    const double whole = std::floor(x + 0.5);
    const double t = (x - whole) * kLn2;
    double sum = 1.0;
    for (int i = kTerms; i > 0; --i)
        sum = 1.0 + sum * t / i;
    return std::ldexp(sum, static_cast<int>(whole));
}

double expExact(double x) {
    return exp2Exact(x / kLn2);
}

double logExact(double x) {
    constexpr int kLastPower = 23;
    int exponent = 0;
    double mantissa = std::frexp(x, &exponent);
    if (mantissa < kSqrtHalf) {
        mantissa *= 2.0;
        --exponent;
    }
    // log m = 2 (z + z^3/3 + z^5/5 + ...)
    const double z = (mantissa - 1.0) / (mantissa + 1.0);
    double sum = 0.0;
    for (int power = kLastPower; power > 0; power -= 2)
        sum = sum * z * z + 1.0 / power;
    return exponent * kLn2 + 2.0 * z * sum;
}

}  // namespace brevold::sim
