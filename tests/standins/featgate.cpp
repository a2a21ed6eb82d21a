extern "C" {
int testIsFeatureEnabled(int feature);

#ifndef WITHOUT_IsFeatureEnabled
int IsFeatureEnabled(int feature) {
    return testIsFeatureEnabled(feature);
}
#endif
}
