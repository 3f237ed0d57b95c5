// A plug-in shell for the fonts dialogs' tests: the dialogs' code lives in the test program
// itself (which exports its registration), so that tests reach the very objects the
// runtime made from it.
#include "sdk/PluginRegistry.h"

extern "C" void VlmUiTestRegister(IPluginRegistry* registry);

extern "C" __attribute__((visibility("default"))) const uint32 GalleyPluginSDKVersion = kGalleySDKVersion;

extern "C" __attribute__((visibility("default"))) void GalleyPluginMain(IPluginRegistry* registry) {
    VlmUiTestRegister(registry);
}
