#include "document/FontChangeObserver.h"

#include "document/IDFontSuite.h"
#include "link/NotifiyHandlerFactory.h"
#include "resources/VellumineIDs.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IFontMgr.h"
#include "sdk/ISession.h"
#include "sdk/ISubject.h"

namespace VLM {

namespace {

ISubject* fontSubject() {
    IFontMgr* fonts = gSession ? gSession->GetFontMgr() : nullptr;
    return fonts ? fonts->GetSubject() : nullptr;
}

} // namespace

FontChangeObserver::FontChangeObserver() : CObserver(nullptr, IID_IFONTCHANGEOBSERVER) {}

void FontChangeObserver::AutoAttach() {
    CObserver::AutoAttach();
    if (ISubject* subject = fontSubject())
        subject->AttachObserver(this, IID_IFONTMGR);
}

void FontChangeObserver::AutoDetach() {
    CObserver::AutoDetach();
    if (ISubject* subject = fontSubject())
        subject->DetachObserver(this, IID_IFONTMGR);
}

void FontChangeObserver::Update(ClassID change, ISubject*, PMIID, void*) {
    if (change != kFontSystemChangedMessage)
        return;
    IDFontSuite* suite = IDFontSuite::getFontSuite(false);
    if (!suite->currentDocument)
        return;
    IDFontSuite::FontVector fresh = suite->ScanDocument(suite->currentDocument);
    const IDFontSuite::FontVector old = suite->documentFonts;
    for (auto& slot : fresh) {
        for (const auto& earlier : old) {
            if (earlier->font.syncID != slot->font.syncID)
                continue;
            // The earlier record lives on with the font manager's answers and the user's
            // choices; it takes the fresh scan's flags.
            const bool hasTypeMatching = slot->hasTypeMatching;
            const bool used = slot->stateFlag3;
            const bool usedAgain = slot->stateFlag3;
            slot = earlier;
            slot->hasTypeMatching = hasTypeMatching;
            slot->stateFlag3 = used;
            slot->stateFlag4 = usedAgain;
            break;
        }
    }
    suite->syncFontsWithVlm(fresh);
    suite->documentFonts = fresh;
    NotifiyHandlerFactory::getNotifyHandler(false)->notifiyAll("<cmd cmd=\"fontChanged\"/>");
}

} // namespace VLM
