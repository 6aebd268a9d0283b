/// A library that lacks one of a plug-in's entry points.
extern "C" __attribute__((visibility("default"))) int initializePlugin() { return 0; }
