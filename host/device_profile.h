#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

/**
 * The system properties, allowed features and application types from which the fakes answer. A
 * process has one profile. It starts empty: every property has its default, no feature is allowed
 * and no application type is known. Not thread-safe; fill it before the library is initialised.
 *
 * A profile file holds one key=value per line, each key once. Blanks around keys and values, empty
 * lines and lines that start with # are skipped. The output of getprop is a profile too: its lines
 * "[key]: [value]" count only for properties that the library reads. A value may have several
 * lines, up to one that ends in "]".
 *
 *   vendor.perf.pfar.enable=1     a system property that the library reads
 *   feature.5=1                   feature 4 (jank boost) or 5 (energy scaling); 1 allows it
 *   app-type.com.example.game=2   application type of a package
 *   app-type.*=0                  application type of every other package
 */
namespace brevold::host {

struct ProfileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** Adds the entries of a file to the profile. Throws ProfileError with file and line. */
void loadProfile(const std::string& path);

/** Sets one entry, replacing an earlier value. Throws ProfileError. */
void setProfileEntry(const std::string& entry);

/** Throws ProfileError if setProfileEntry() would. */
void checkProfileEntry(const std::string& entry);

/**
 * Allows both features, turns on every switch except debug output, and makes every application a
 * target of the library.
 */
void turnEverythingOn();

/** Returns a property's value, or the fallback (null reads as "") if the profile has none. */
std::string profileProperty(const char* key, const char* fallback);

bool isFeatureAllowed(int feature);

/** Returns the type of a package's application, or -1 if the profile has no entry for it. */
int32_t applicationType(const std::string& package);

}  // namespace brevold::host
