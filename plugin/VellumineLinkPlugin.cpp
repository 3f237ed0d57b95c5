// The plug-in's entry point: what Galley loads, and everything the plug-in registers with it.
#include "document/DocumentServiceProvider.h"
#include "document/FontChangeObserver.h"
#include "document/RefreshIdleTask.h"
#include "document/VellumineActionComponent.h"
#include "link/NotifiyHandlerFactory.h"
#include "resources/VellumineIDs.h"
#include "sdk/PluginRegistry.h"
#include "ui/UiRegistration.h"

#include <memory>

namespace {

template <typename T>
std::unique_ptr<IPMUnknown> make(IPMUnknown*) {
    return std::make_unique<T>();
}

// When Galley stops the plug-in, the transport stops receiving the font manager's events
// and its library watcher stops, before the platform services they use go away.
void stopTransport() {
    VLM::NotifiyHandlerFactory::getNotifyHandler(false)->end();
}

} // namespace

extern "C" __attribute__((visibility("default"))) const uint32 GalleyPluginSDKVersion =
    kGalleySDKVersion;

extern "C" __attribute__((visibility("default"))) void GalleyPluginMain(IPluginRegistry* registry) {
    using namespace VLM;
    registry->SetPluginInfo("Vellumine Link", kVelluminePrefix);
    registry->RegisterResponder(kDocumentServiceProviderImpl, &make<DocumentServiceProvider>,
                                kDocumentResponderImpl, &make<DocumentResponder>);
    registry->RegisterSessionObserver(kFontChangeObserverImpl, IID_IFONTCHANGEOBSERVER,
                                      &make<FontChangeObserver>);
    registry->RegisterIdleTask(kRefreshIdleTaskImpl, &make<RefreshIdleTask>, kWaitingDialogRsrcID,
                               IID_IVELLUMINEREFRESHTASK);
    registry->RegisterActionComponent(kVellumineActionComponentImpl,
                                      &make<VellumineActionComponent>);
    registry->RegisterMenuEntry(kVellumineAboutActionID, "about", "0x11f300kAboutMenuKey");
    registry->RegisterMenuEntry(kVellumineDialogActionID, "fonts", "0x11f300kFontsMenuKey");
    registerFontsDialogs(*registry);
    registry->RegisterStopHandler(&stopTransport);
}
