# A device with every feature allowed, every switch on, and debug output.
# Lines are key=value. The value extends to the end of the line.

# Features that the device's feature switch allows: 4 is the jank boost, 5 energy scaling.
feature.4=1
feature.5=1

# The system properties that the library reads. A switch is on if its value is the integer 1.
vendor.perf.pfar.enable=1
vendor.perf.pfar.down.enable=1
vendor.perf.jr10.enable=1
vendor.perf.fps_switch.enable=1
vendor.perf.brevold.debug=1
vendor.display.use_smooth_motion=1

# Layers that the library ignores, separated by single blanks. NONE is an empty list.
vendor.perf.brevold.debug.layers=NONE

# Application types by package; * is every other package. The library acts on type 2.
app-type.*=2
