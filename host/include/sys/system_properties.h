#pragma once

// cutils/properties.h includes this header of the device's C library. Debian has none.
#define PROP_NAME_MAX 32
#define PROP_VALUE_MAX 92
