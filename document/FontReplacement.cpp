// The two operations of the document font suite that change the host rather than talk to
// the font manager: replacing a font throughout a document, and refreshing the font list.
#include "document/IDFontSuite.h"

#include "foundation/HostText.h"
#include "sdk/IAttributeStrand.h"
#include "sdk/ICommand.h"
#include "sdk/IComposeScanner.h"
#include "sdk/IDataBase.h"
#include "sdk/IDocFontMgr.h"
#include "sdk/IDocument.h"
#include "sdk/IFontFamily.h"
#include "sdk/IFontMgr.h"
#include "sdk/ISession.h"
#include "sdk/IStoryList.h"
#include "sdk/ITextAttrUtils.h"
#include "sdk/ITextModel.h"
#include "sdk/IWorkspace.h"
#include "sdk/TextAttributes.h"
#include "sdk/TickCount.h"

namespace VLM {

namespace {

// A refresh gives newly activated fonts this long to appear (about 3.3 seconds).
constexpr uint32 refreshWaitTicks = 200;

struct StoryWalk {
    IDocument* document;
    IDataBase* database;
    IDocFontMgr* docFonts;
    IFontMgr* fonts;
    ITextAttrUtils* utils;
    const std::string& from;
    const std::string& to;

    // False when an attribute or a command could not be made: the story's walk ends there.
    bool replaceRun(ITextModel* model, IComposeScanner* scanner, TextIndex start, TextIndex end) {
        const ITextAttrUID* family =
            scanner ? scanner->QueryFontFamilyAttribute(start, end) : nullptr;
        const ITextAttrFont* face = scanner ? scanner->QueryFontFaceAttribute(start, end) : nullptr;
        if (!family || !face)
            return true; // a run without both attributes is passed over
        IFontFamily* fontFamily = database->InstantiateFontFamily(family->GetUIDData());
        if (!fontFamily ||
            Helpers::toString(fontFamily->GetFacePostScriptName(face->GetFontName())) != from)
            return true;
        IPMFont* replacement = fonts->QueryFont(PMString(to));
        if (!replacement)
            return true; // the host does not know the replacement: the run stays as it is
        const PMString newFace = replacement->GetStyleName();
        const UID newFamily = docFonts->GetFontFamilyUID(replacement);

        // Family first, then face, each as a command of its own.
        const auto apply = [&](std::unique_ptr<ITextAttribute> attribute) {
            if (!attribute)
                return false;
            auto command = utils->BuildApplyTextAttrCmd(model, start, end - start, *attribute);
            if (!command)
                return false;
            CmdUtils::ProcessCommand(command.get());
            return true;
        };
        if (!apply(utils->CreateFontFamilyAttribute(newFamily)) ||
            !apply(utils->CreateFontFaceAttribute(newFace)))
            return false;
        return true;
    }

    void story(UID storyUID) {
        ITextModel* model = database->InstantiateTextModel(storyUID);
        IAttributeStrand* strand = model ? model->QueryFontStrand() : nullptr;
        if (!strand)
            return;
        IComposeScanner* scanner = model->QueryComposeScanner();
        const int32 length = model->TotalLength();
        for (TextIndex position = 0; position < length;) {
            const int32 run = strand->GetRunLength(position);
            const TextIndex start = std::max(position, 0);
            const TextIndex end = std::max(position + run, start);
            if (!replaceRun(model, scanner, start, end))
                return;
            // A run the strand cannot measure still moves the walk on, so that it ends.
            position += run > 0 ? run : 1;
        }
    }
};

} // namespace

void IDFontSuite::replaceFont(IDocument* document, std::string fromPsName, std::string toFontName) {
    IFontMgr* fonts = gSession ? gSession->GetFontMgr() : nullptr;
    if (!document || !fonts)
        return;
    IWorkspace* workspace = document->GetDocWorkSpace();
    IDocFontMgr* docFonts = workspace ? workspace->GetDocFontMgr() : nullptr;
    IStoryList* stories = document->GetStoryList();
    ITextAttrUtils* utils = gSession->GetTextAttrUtils();
    if (!docFonts || !stories || !utils || !document->GetDataBase())
        return;
    StoryWalk walk{document,  document->GetDataBase(), docFonts, fonts, utils, fromPsName,
                   toFontName};
    for (int32 n = 0; n < stories->GetTextModelCount(); ++n)
        walk.story(stories->GetNthTextModelUID(n));
}

void IDFontSuite::UpdateFontSystem() {
    IFontMgr* fonts = gSession ? gSession->GetFontMgr() : nullptr;
    if (!fonts)
        return;
    const uint32 start = TickCount();
    const int32 before = fonts->GetFontCount(false, IFontMgr::kAllFonts);
    // Bounded: fonts the font manager has just activated get a moment to appear. Galley's
    // update waits on its font-folder watch for up to a tick, so this loop sleeps.
    for (;;) {
        fonts->UpdateFontList();
        const int32 now = fonts->GetFontCount(true, IFontMgr::kAllFonts);
        if (now != before || TickCount() - start >= refreshWaitTicks)
            break;
    }
    IFontListNotices* notices = fonts->QueryFontListNotices();
    if (!notices)
        return;
    notices->FontListRefreshed(true);
    IDocumentViews* views = gSession->QueryDocumentViews();
    if (!views)
        return;
    views->InvalidateAllViews();
    views->UpdateViews(false);
}

} // namespace VLM
