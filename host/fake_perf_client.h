#pragma once

#include <cstdint>
#include <string>

namespace brevold::host {

/** A call of the fake performance client. Calls that read a setting are not reported. */
struct ServiceCall {
    enum class Kind : uint8_t { Hint, Release, Query };
    /** Nanoseconds of systemTime's monotonic clock. */
    int64_t timeNs;
    Kind kind;
    /** Hint or query identifier; for a release, the handle. */
    int32_t identifier;
    /** Empty if the caller passed none. */
    std::string package;
    int32_t duration;
    int32_t type;
    /** Handle of a hint, answer to a query; 0 for a release. */
    int32_t result;
};

/** Called during each call of the client, on the caller's thread, one call at a time. */
using ServiceListener = void (*)(const ServiceCall& call, void* context);

/** Symbol name of the function below, for dlsym. */
constexpr char kSetServiceListener[] = "perfd_set_listener";

/** Sets the listener; null removes it. There is only one. */
extern "C" void perfd_set_listener(ServiceListener listener, void* context);

}  // namespace brevold::host
