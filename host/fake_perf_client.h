#pragma once

#include <cstdint>
#include <string>

/** What the stand-in of the performance service's client library was asked, but for settings. */
namespace brevold::host {

struct ServiceCall {
    enum class Kind : uint8_t { Hint, Release, Query };
    /** When, in nanoseconds of systemTime's monotonic clock. */
    int64_t timeNs;
    Kind kind;
    /** Hint or query identifier; for a release the handle. */
    int32_t identifier;
    /** Empty where none was given. */
    std::string package;
    int32_t duration;
    int32_t type;
    /** A hint's handle, a query's answer. */
    int32_t result;
};

/** Called within each call of the client library, on the caller's thread, one call at a time. */
using ServiceListener = void (*)(const ServiceCall& call, void* context);

/** The symbol of the function below in the library, for dlsym. */
constexpr char kSetServiceListener[] = "perfd_set_listener";

/** Sets the one listener; null for none. */
extern "C" void perfd_set_listener(ServiceListener listener, void* context);

}  // namespace brevold::host
