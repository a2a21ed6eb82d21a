#include "host/device_profile.h"

extern "C" int IsFeatureEnabled(int feature) {
    return brevold::host::isFeatureAllowed(feature) ? 1 : 0;
}
