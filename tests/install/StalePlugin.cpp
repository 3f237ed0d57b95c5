// A plug-in built against an older SDK: Galley must report it once and run on without it.
#include "sdk/PluginRegistry.h"

extern "C" __attribute__((visibility("default")))
const uint32 GalleyPluginSDKVersion = kGalleySDKVersion - 1;

extern "C" __attribute__((visibility("default"))) void GalleyPluginMain(IPluginRegistry*) {}
