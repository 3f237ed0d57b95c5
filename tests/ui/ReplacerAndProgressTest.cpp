#include "FontsDialogFixture.h"

#include "sdk/IFontFamily.h"
#include "sdk/IFontMgr.h"
#include "sdk/IIdleTask.h"
#include "ui/ReplacerDialog.h"
#include "ui/VLMProgressBarWidgetView.h"
#include "ui/WaitingDialog.h"

namespace UiTest {
namespace {

// A font manager whose families may hold a face that cannot be had, and that may fail to
// give a family it counted.
struct Font : IPMFont {
    std::string family, style;
    PMString GetPostScriptName() const override { return {}; }
    PMString GetFamilyName() const override { return PMString(family); }
    PMString GetStyleName() const override { return PMString(style); }
    FontType GetFontType() const override { return kOpenTypeCFF; }
};
struct Family : IFontFamily {
    std::vector<Font> faces;
    std::string unavailable;
    PMString GetFamilyName() const override { return PMString(faces[0].family); }
    void GetHostFamilyName(PMString& name) const override { name = GetFamilyName(); }
    int32 GetNumFaces() const override { return static_cast<int32>(faces.size()); }
    PMString GetFaceName(int32 index) const override { return PMString(faces.at(std::size_t(index)).style); }
    PMString GetFacePostScriptName(const PMString&) const override { return {}; }
    IPMFont::FontType GetFaceFontType(const PMString&) const override { return IPMFont::kOpenTypeCFF; }
    IPMFont* QueryFace(const PMString& face) const override {
        for (const Font& font : faces)
            if (font.style == face.GetUTF8String() && font.style != unavailable)
                return const_cast<Font*>(&font);
        return nullptr;
    }
};
struct FontMgr : IFontMgr {
    std::vector<Family> families;
    int32 GetFontCount(bool, int32) const override { return 0; }
    bool UpdateFontList() override { return false; }
    IPMFont* QueryFont(const PMString&) const override { return nullptr; }
    int32 GetNumFontFamilies() const override { return static_cast<int32>(families.size()) + 1; }
    IFontFamily* GetNthFontFamily(int32 index) const override {
        return index < static_cast<int32>(families.size()) ? const_cast<Family*>(&families[std::size_t(index)]) : nullptr;
    }
    IFontFamily* QueryFontFamily(const PMString&) const override { return nullptr; }
    ISubject* GetSubject() override { return nullptr; }
};
struct SessionWithFonts : ISession {
    ISession& real;
    FontMgr fonts;
    explicit SessionWithFonts(ISession& real) : real(real) {}
    IFontMgr* GetFontMgr() override { return &fonts; }
    ITextAttrUtils* GetTextAttrUtils() override { return real.GetTextAttrUtils(); }
};

Family family(const std::string& name, std::initializer_list<const char*> styles, std::string unavailable = "") {
    Family made;
    for (const char* style : styles) {
        made.faces.emplace_back();
        made.faces.back().family = name;
        made.faces.back().style = style;
    }
    made.unavailable = std::move(unavailable);
    return made;
}

using Replacer = FontsDialogTest;

TEST_F(Replacer, ListSkipsFacesThatCannotBeHadAndStaysAlignedWithItsNames) {
    SessionWithFonts swapped(session);
    // Gamma Ghost cannot be had; a third family is counted but cannot be had either.
    swapped.fonts.families = {family("Gamma", {"Regular", "Ghost", "Bold"}, "Ghost"), family("Delta", {"Italic"})};
    gSession = &swapped;
    Galley::Dialog& dialog = open(kReplacerDialogRsrcID);
    gSession = &session;

    auto* controller = dynamic_cast<ReplacerDialogController*>(dialog.GetController());
    const std::vector<PMString> expected{PMString("Gamma Regular"), PMString("Gamma Bold"), PMString("Delta Italic")};
    EXPECT_EQ(controller->names(), expected);
    Galley::Widget& list = widget(dialog, kReplacerListBoxWidgetID);
    ASSERT_EQ(list.Length(), 3);
    for (int32 n = 0; n < 3; ++n) {
        IControlView* text = list.GetElement(n)->GetPanelControlData()->FindWidget(kReplacerElementTextWidgetID);
        EXPECT_EQ(text->GetTextControlData()->GetString(), expected[std::size_t(n)]);
    }
}

TEST_F(Replacer, OKLeavesTheChosenNameAndAFlagOnTheDialog) {
    struct Case { int select; bool doubleClick; const char* name; int32 flag; };
    for (const auto& [select, doubleClick, name, flag] :
         {Case{-1, false, "", 0}, Case{1, true, "Alpha Bold", 1}, Case{2, true, "Beta Regular", 1}, Case{2, false, "", 0}}) {
        Galley::Dialog& dialog = open(kReplacerDialogRsrcID);
        Galley::Widget& list = widget(dialog, kReplacerListBoxWidgetID);
        ASSERT_EQ(list.Length(), 3);
        if (doubleClick)
            list.doubleClickElement(select); // confirms like OK
        else if (select >= 0)
            list.Select(select), dialog.cancel(); // a choice cancelled counts as none
        else
            dialog.PressDefaultButton();
        EXPECT_FALSE(dialog.IsOpen()) << name;
        EXPECT_EQ(dialog.GetStringData()->GetString().GetUTF8String(), name);
        EXPECT_EQ(dialog.GetIntData()->GetInt(), flag) << name;
    }
}

class Progress : public FontsDialogTest {
protected:
    // `total` fonts of which the first `missing` are missing.
    Galley::Dialog& openOver(int total, int missing) {
        suite->documentFonts.clear();
        for (int n = 0; n < total; ++n)
            suite->documentFonts.push_back(record("F" + std::to_string(n), {0, false, false, n >= missing}));
        return open(kWaitingDialogRsrcID);
    }
    CIdleTask& refresh(Galley::Dialog& dialog) { return *dynamic_cast<CIdleTask*>(dialog.QueryAddIn(IID_IVELLUMINEREFRESHTASK)); }
};

TEST_F(Progress, NewsShowActivatedOfTotalThenCloseTheDialogOnce) {
    Galley::Dialog& dialog = openOver(10, 3);
    EXPECT_TRUE(refresh(dialog).IsInstalled());
    notify();
    EXPECT_EQ(widget(dialog, kWaitingTextWidgetID).displayText(), "Please Wait, 7 of 10 fonts activated");
    Galley::Widget& bar = widget(dialog, kWaitingProgressBarWidgetID);
    EXPECT_EQ((std::vector<int>{bar.GetMinimum(), bar.GetMaximum(), bar.GetValue()}), (std::vector<int>{0, 10, 7}));
    for (const auto& font : suite->documentFonts)
        font->stateFlag4 = true;
    notify();
    notify();
    EXPECT_FALSE(dialog.IsOpen());
    EXPECT_EQ(presenter.closed.size(), 1u);
    EXPECT_TRUE(dynamic_cast<WaitingDialogObserver*>(dialog.GetObserver())->IsClosed());
    EXPECT_FALSE(refresh(dialog).IsInstalled());
}

TEST_F(Progress, ADocumentWithoutFontsClosesAtTheFirstNews) {
    Galley::Dialog& dialog = openOver(0, 0);
    notify();
    EXPECT_FALSE(dialog.IsOpen());
}

TEST_F(Progress, ADialogOpenedAndClosedBetweenTwoNewsHearsNoneOnceDestroyed) {
    openOver(2, 1).cancel();
    runtime->loop().turn(std::chrono::microseconds(0)); // the closed dialog is destroyed
    Galley::Dialog& second = openOver(0, 0);
    notify(); // would call the destroyed observer if it had stayed registered
    EXPECT_FALSE(second.IsOpen());
}

TEST(ProgressBarView, FillsInProportionToTheValueWithinItsRange) {
    using VLMProgressBarWidgetView::Rect;
    const Rect frame{10, 5, 200, 16};
    struct Case { int16 minimum, maximum, value; double filled; };
    for (const auto& [minimum, maximum, value, filled] :
         {Case{0, 10, 7, 140}, Case{0, 10, 0, 0}, Case{0, 10, 12, 200}, Case{5, 15, 10, 100}, Case{0, 0, 3, 0}}) {
        const auto contents = VLMProgressBarWidgetView::layout(frame, minimum, maximum, value, "text");
        EXPECT_EQ(contents.filled, (Rect{10, 5, filled, 16})) << value;
        EXPECT_EQ(contents.empty, (Rect{10 + filled, 5, 200 - filled, 16})) << value;
    }
    const auto contents = VLMProgressBarWidgetView::layout(frame, 0, 1, 0, "Please Wait");
    EXPECT_EQ(contents.text, "Please Wait");
    EXPECT_EQ(contents.fontName, "LucidaGrande");
    EXPECT_EQ(contents.pointSize, 12);
}

} // namespace
} // namespace UiTest
