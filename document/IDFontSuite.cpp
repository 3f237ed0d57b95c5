#include "document/IDFontSuite.h"

#include "foundation/HostText.h"
#include "foundation/Logger.h"
#include "foundation/NumberText.h"
#include "foundation/Tokenize.h"
#include "link/VLMController.h"
#include "link/VLMFontActivateEvent.h"
#include "link/VLMFontBuyEvent.h"
#include "link/VLMFontInfoEvent.h"
#include "link/VLMFontRequestEvent.h"
#include "resources/VellumineIDs.h"
#include "sdk/CAlert.h"
#include "sdk/IDataBase.h"
#include "sdk/IDocument.h"
#include "sdk/IDocumentFontUsage.h"
#include "sdk/IFontFamily.h"

#include <memory>

namespace VLM {

namespace {

IDFontSuite*& instance() {
    static IDFontSuite* suite = nullptr;
    return suite;
}

using UsageCount = int32 (IDocumentFontUsage::*)() const;
using UsageUID = UID (IDocumentFontUsage::*)(int32) const;
using UsageFace = PMString (IDocumentFontUsage::*)(int32) const;

// Sends one request over a copy of the records' vector; the request lives only for the send.
template <typename Event>
std::unique_ptr<Event> sendRequest(const IDFontSuite::FontVector& fonts) {
    auto event = std::make_unique<Event>();
    event->fonts = fonts;
    event->build();
    event->send();
    return event;
}

} // namespace

IDFontSuite* IDFontSuite::getFontSuite(bool recreate) {
    IDFontSuite*& suite = instance();
    if (recreate) {
        delete suite;
        suite = nullptr;
    }
    if (!suite)
        suite = new IDFontSuite();
    return suite;
}

IDFontSuite::FontVector IDFontSuite::ScanDocument(IDocument* document) {
    FontVector result;
    IDocumentFontUsage* usage = document ? document->GetDocumentFontUsage() : nullptr;
    if (!usage)
        return result;
    usage->Update();
    IDataBase* database = document->GetDataBase();

    struct List {
        UsageCount count;
        UsageUID uid;
        UsageFace face;
        bool used;
    };
    const List lists[] = {
        {&IDocumentFontUsage::GetMissingFontCount, &IDocumentFontUsage::GetMissingNthFontFamilyUID,
         &IDocumentFontUsage::GetMissingNthFontFaceName, false},
        {&IDocumentFontUsage::GetUsedFontCount, &IDocumentFontUsage::GetUsedNthFontFamilyUID,
         &IDocumentFontUsage::GetUsedNthFontFaceName, true},
    };
    for (const List& list : lists) {
        const int32 count = (usage->*list.count)();
        for (int32 n = 0; n < count; ++n) {
            const UID uid = (usage->*list.uid)(n);
            const PMString faceName = (usage->*list.face)(n);
            IFontFamily* family = database ? database->InstantiateFontFamily(uid) : nullptr;
            if (!family)
                continue; // a usage entry whose family the database cannot give has no names
            PMString hostFamilyName;
            family->GetHostFamilyName(hostFamilyName);

            Tamrik::SmartPointer<VLMFontInfo> record(new VLMFontInfo());
            record->stateFlag3 = list.used;
            record->stateFlag4 = list.used;
            record->hostFontName = Helpers::toString(hostFamilyName);
            record->font.familyName = Helpers::toString(family->GetFamilyName());
            record->font.styleName = Helpers::toString(faceName);
            record->font.psName = Helpers::toString(family->GetFacePostScriptName(faceName));
            record->font.syncID = Tamrik::toString(uid) + "-" + record->font.styleName;
            applyFontType(record, family->GetFaceFontType(faceName), false);
            fixFontInfo(record);
            result.push_back(record);
        }
    }
    return result;
}

void IDFontSuite::applyFontType(const Tamrik::SmartPointer<VLMFontInfo>& font,
                                IPMFont::FontType hostType, bool isOpenTypeFlavour) {
    // A PostScript name with a blank in it is no PostScript name at all.
    if (Tamrik::tokenize(font->font.psName, " ", true).size() != 1) {
        font->font.psName.clear();
        return;
    }
    switch (hostType) {
    case IPMFont::kType1:
        font->font.type = isOpenTypeFlavour ? 2 : 0;
        break;
    case IPMFont::kTrueType:
        font->font.type = isOpenTypeFlavour ? 3 : 1;
        break;
    case IPMFont::kOpenTypeCFF:
        font->font.type = 2;
        break;
    case IPMFont::kOpenTypeTT:
        font->font.type = 3;
        break;
    default:
        font->font.type = 4;
        break;
    }
}

void IDFontSuite::fixFontInfo(const Tamrik::SmartPointer<VLMFontInfo>& font) {
    if (font->font.styleName.empty())
        font->font.styleName = "Regular";
    if (font->font.psName.empty())
        font->font.psName = font->font.familyName;
}

int IDFontSuite::basicVlmChecks() {
    if (int launched = VLMController::LaunchVellumine(); launched != 0) {
        CAlert::InformationAlert(PMString(kVellumineNotFoundKey));
        return launched;
    }
    Logger::log("ID-FontSuite", "checked if vlm is running");
    if (int version = VLMController::CheckRunningVersion(); version != 0) {
        CAlert::InformationAlert(PMString(kVellumineTooOldKey));
        return version;
    }
    Logger::log("ID-FontSuite", "checked for correct version");
    // The protocol version comes with any reply; an empty show request asks for nothing else.
    auto probe = sendRequest<VLMFontInfoEvent>({});
    return VLMController::checkForNeededProtocolVersion(probe->getProtocolVersion(), 2, 0) ? 0 : -1;
}

bool IDFontSuite::syncFontsWithVlm(FontVector& fonts) {
    basicVlmChecks(); // kept, never tested: the caller that must stop checks first
    auto request = sendRequest<VLMFontRequestEvent>(fonts);
    fonts = request->fonts;
    return request->showWindow;
}

void IDFontSuite::activateFonts(const FontVector& fonts) {
    Logger::log("ID-FontSuite", "starting font activation");
    basicVlmChecks();
    sendRequest<VLMFontActivateEvent>(fonts);
}

void IDFontSuite::showInfo(const FontVector& fonts) {
    basicVlmChecks();
    sendRequest<VLMFontInfoEvent>(fonts);
}

void IDFontSuite::buyFonts(const FontVector& fonts) {
    basicVlmChecks();
    sendRequest<VLMFontBuyEvent>(fonts);
}

namespace {

bool isMissing(const VLMFontInfo& font, bool strictTypeMatching) {
    return !font.stateFlag4 || (strictTypeMatching && !font.font.isTypeMatchingActive);
}

} // namespace

int IDFontSuite::getNumMissingFonts(const FontVector& fonts, bool strictTypeMatching) {
    int missing = 0;
    for (const auto& font : fonts)
        missing += isMissing(*font, strictTypeMatching) ? 1 : 0;
    return missing;
}

int IDFontSuite::getNumFontsNotInstalled(const FontVector& fonts) {
    int notInstalled = 0;
    for (const auto& font : fonts)
        notInstalled += font->hasTypeMatching ? 0 : 1;
    return notInstalled;
}

IDFontSuite::FontVector IDFontSuite::getMissingFonts(const FontVector& fonts,
                                                     bool strictTypeMatching) {
    FontVector missing;
    for (const auto& font : fonts) {
        font->selectedContainerID = "-1"; // every record, missing or not
        if (isMissing(*font, strictTypeMatching))
            missing.push_back(font);
    }
    return missing;
}

} // namespace VLM
