#include "document/DocumentServiceProvider.h"
#include "document/ErrorMessage.h"
#include "document/IDFontSuite.h"
#include "foundation/Logger.h"
#include "link/NotifiyHandlerFactory.h"
#include "resources/VellumineIDs.h"
#include "sdk/CAlert.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IDialog.h"
#include "sdk/IDocument.h"
#include "sdk/IObserver.h"
#include "sdk/ISession.h"
#include "sdk/ISignalMgr.h"

#include <exception>

namespace VLM {

namespace {

// The dialog that follows a font request: the progress dialog when the font manager can
// supply every font without asking the user, else the fonts dialog while fonts are missing.
bool showFontsDialog(bool showWindow, int missing, int notInstalled) {
    IApplication* application = gSession ? gSession->QueryApplication() : nullptr;
    IDialogMgr* dialogs = application ? application->GetDialogMgr() : nullptr;
    if (!dialogs)
        return false;
    const bool progress = !showWindow && notInstalled < 1;
    if (!progress && missing <= 0)
        return true;
    const RsrcID resource = progress ? kWaitingDialogRsrcID : kVellumineDialogRsrcID;
    IDialog* dialog = dialogs->CreateNewDialog(
        RsrcSpec(MLocaleSetting::GetLocale(), kVelluminePrefix, kViewRsrcType, resource),
        IDialog::kMovableModal);
    if (!dialog)
        return false;
    // Both are modal: the progress dialog ends by itself and lets idle tasks run during its
    // wait; the fonts dialog waits for the user.
    dialog->SetClosesByItself(progress);
    dialog->Open(nullptr);
    dialog->WaitForDialog(progress);
    return true;
}

} // namespace

void DocumentResponder::Respond(ISignalMgr* signalMgr) {
    try {
        if (!signalMgr || signalMgr->GetServiceID() != kAfterOpenDocSignalResponderService)
            return;
        IDocumentSignalData* data = signalMgr->GetDocumentSignalData();
        if (!data)
            return;
        IDocument* document = data->GetDocument();
        if (!document)
            return;

        IObserver* observer = gSession ? gSession->QueryObserver(IID_IFONTCHANGEOBSERVER) : nullptr;
        if (observer)
            observer->AutoAttach();
        IVLMNotifyHandler* handler = NotifiyHandlerFactory::getNotifyHandler(false);
        handler->start();

        IDFontSuite* suite = IDFontSuite::getFontSuite(false);
        IDFontSuite::FontVector fonts = suite->ScanDocument(document);
        if (suite->getNumMissingFonts(fonts, false) != 0) {
            // The early returns below leave the observer attached and the handler running.
            if (document->IsConverted()) {
                PMString text(kVellumineConvertedDocTextKey);
                CAlert::InformationAlert(text);
                return;
            }
            if (suite->basicVlmChecks() != 0)
                return;
            if (observer && !observer->IsEnabled())
                observer->SetEnabled(true);
            const bool showWindow = suite->syncFontsWithVlm(fonts);
            suite->documentFonts = fonts;
            suite->currentDocument = document;
            const int missing = suite->getNumMissingFonts(fonts, true);
            const int notInstalled = suite->getNumFontsNotInstalled(fonts);
            Logger::log("DocWatch-Respond", "showWindow " + std::to_string(showWindow) +
                                                ", missing " + std::to_string(missing) +
                                                ", not installed " + std::to_string(notInstalled));
            if (!showFontsDialog(showWindow, missing, notInstalled))
                return;
            if (observer)
                observer->SetEnabled(false);
            suite->documentFonts.clear();
            suite->currentDocument = nullptr;
        }
        if (observer)
            observer->AutoDetach();
        handler->end();
    } catch (const std::exception& error) {
        showErrorMessage(error.what());
    }
}

} // namespace VLM
