#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

/**
 * The device that the stand-ins answer for: system properties, allowed features and application
 * types. A process has one profile; it starts empty, so that everything has the system's own
 * default, which is off. Fill it before the library is initialised: it is not locked.
 *
 * A profile is text, one key=value a line; empty lines and lines that start with # are skipped. The
 * value is everything behind the first '=', to the end of the line.
 *
 *   vendor.perf.pfar.enable=1     a system property, one of those that the library reads
 *
 *   feature.5=1                   feature 4 (jank boost) or 5 (energy scaling): 1 allowed, 0 not
 *
 *   app-type.com.example.game=2   application type of a package
 *
 *   app-type.*=0                  application type of every other package
 */
namespace brevold::host {

struct ProfileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** Reads a file into the profile. Throws ProfileError, naming file and line. */
void loadProfile(const std::string& path);

/** Sets one key=value. Throws ProfileError. */
void setProfileEntry(const std::string& entry);

/** A property's value, or the fallback where the profile has none. */
std::string profileProperty(const char* key, const char* fallback);

bool isFeatureAllowed(int feature);

/** The application type of a package; -1 where the profile has neither it nor a default. */
int32_t applicationType(const std::string& package);

}  // namespace brevold::host
