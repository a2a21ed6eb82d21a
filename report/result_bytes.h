#pragma once

#include <string>

#include "report/summary.h"

namespace brevold::report {

/** Packs a result for another process of the same program. */
std::string toBytes(const TraceResult& result);

/** Unpacks what toBytes() returned. */
TraceResult toResult(const std::string& bytes);

}  // namespace brevold::report
