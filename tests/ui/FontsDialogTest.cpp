#include "FontsDialogFixture.h"

#include "sdk/IIdleTask.h"
#include "ui/FontRowStatus.h"
#include "ui/UiRegistration.h"
#include "ui/VellumineDialogController.h"

// Stands in for the refresh task the plug-in makes reachable from the progress dialog.
struct RefreshTaskProbe : CIdleTask {
    uint32 RunTask(uint32, IdleTimer*) override { return 60000; }
    const char* TaskName() override { return "refresh probe"; }
};

// What the plug-in shell registers: the fonts dialogs as the plug-in registers them.
extern "C" void VlmUiTestRegister(IPluginRegistry* registry) {
    registry->SetPluginInfo("Vellumine Link (tests)", kVelluminePrefix);
    VLM::registerFontsDialogs(*registry);
    auto makeTask = [](IPMUnknown*) -> std::unique_ptr<IPMUnknown> {
        return std::make_unique<RefreshTaskProbe>();
    };
    registry->RegisterIdleTask(kRefreshIdleTaskImpl, makeTask, kWaitingDialogRsrcID,
                               IID_IVELLUMINEREFRESHTASK);
}

namespace UiTest {
namespace {

TEST(FontRowStatus, TextAndColourAreDecidedEachInTheirOwnOrder) {
    using namespace FontRowStatus;
    struct Case {
        Shape shape;
        std::string key;
        RGBColor colour;
    };
    const Case cases[] = {
        {{2, true}, kVellumineMulitpleTextKey, orange},
        {{2, true, false, false, true}, kVellumineReplacedTextKey, orange},
        {{1, true, true, false}, kVelluminePendingTextKey, green},
        {{1, true, true, true}, kVellumineAvailableTextKey, green},
        {{1, true, false, false}, kVellumineAvailableTextKey, green},
        {{1, false}, kVellumineAvailableTextKey, red},
        {{0, false}, kVellumineMissingTextKey, red},
        {{0, true}, "", red},
        {{0, false, false, false, true}, kVellumineReplacedTextKey, orange},
    };
    for (const auto& [shape, key, colour] : cases) {
        const auto font = record("F", shape);
        EXPECT_EQ(textKey(*font), key) << shape.candidates << shape.suppliable << shape.replaced;
        EXPECT_EQ(FontRowStatus::colour(*font), colour) << key;
    }
}

class FontsDialog : public FontsDialogTest {
protected:
    // Rows: 0 A, 1 A's match in 11, 2 A's match without a container, 3 B, 4 C, 5 D.
    void SetUp() override {
        suite->documentFonts = {record("A", {2, true}, {"11", ""}), record("B", {}),
                                record("C", {1, true, true}),
                                record("D", {1, true, false, false, true})};
        dialog = &open(kVellumineDialogRsrcID);
        tree = &widget(*dialog, kFontTreeWidgetID);
    }
    void select(std::initializer_list<int> rows) {
        tree->DeselectAll(true);
        for (int row : rows)
            tree->Select(tree->rows().at(static_cast<std::size_t>(row)).node, true, true);
    }
    std::string cell(int row, WidgetID id) const {
        auto* row_ = tree->rows().at(static_cast<std::size_t>(row)).widget;
        return static_cast<Galley::Widget*>(row_->FindWidget(id, 9))->displayText();
    }
    bool press(WidgetID button) { return dialog->pressButton(widget(*dialog, button)); }
    VellumineDialogController& controller() {
        return *dynamic_cast<VellumineDialogController*>(dialog->GetController());
    }

    Galley::Dialog* dialog = nullptr;
    Galley::Widget* tree = nullptr;
};

TEST_F(FontsDialog, RowsShowNamesTechnologyAndTranslatedStatusInColour) {
    ASSERT_EQ(tree->RowCount(), 6);
    EXPECT_EQ(cell(0, kRowNameWidgetID), "A");
    EXPECT_EQ(cell(0, kRowTechnologyWidgetID), "Unknown");
    EXPECT_EQ(cell(0, kRowStatusWidgetID), "Several matches");
    EXPECT_EQ(cell(1, kRowNameWidgetID), "A from 11");
    EXPECT_EQ(cell(3, kRowStatusWidgetID), "Not in library");
    EXPECT_EQ(cell(4, kRowStatusWidgetID), "Activating");
    EXPECT_EQ(cell(5, kRowStatusWidgetID), "Replaced");
    auto* status =
        static_cast<Galley::Widget*>(tree->rows()[3].widget->FindWidget(kRowStatusWidgetID, 9));
    EXPECT_EQ(*status->textColor(), FontRowStatus::red);
}

TEST_F(FontsDialog, ButtonsFollowTheSelection) {
    struct Case {
        std::initializer_list<int> rows;
        const char* caption;
        bool activate, buy, replace, info;
    };
    const Case cases[] = {
        {{}, "Activate All", true, false, false, false},
        {{0}, "Activate", true, true, true, true},
        {{3}, "Activate", false, true, true, false}, // nothing the font manager can supply
        {{0, 3}, "Activate", true, false, true, true},
        {{2}, "Activate", true, true, false, true}, // a row without a container
    };
    for (const auto& [rows, caption, activate, buy, replace, info] : cases) {
        select(rows);
        std::string what = "rows";
        for (int row : rows)
            what += " " + std::to_string(row);
        EXPECT_EQ(widget(*dialog, kActivateButtonWidgetID).displayText(), caption) << what;
        EXPECT_EQ(widget(*dialog, kActivateButtonWidgetID).IsEnabled(), activate) << what;
        EXPECT_EQ(widget(*dialog, kBuyButtonWidgetID).IsEnabled(), buy) << what;
        EXPECT_EQ(widget(*dialog, kReplaceButtonWidgetID).IsEnabled(), replace) << what;
        EXPECT_EQ(widget(*dialog, kInfoButtonWidgetID).IsEnabled(), info) << what;
    }
}

TEST_F(FontsDialog, ButtonsActOnSelectedRowsLeavingPendingAndReplacedFontsOut) {
    using Values = std::vector<std::string>;
    select({});
    ASSERT_TRUE(press(kActivateButtonWidgetID)); // nothing selected: every missing font
    EXPECT_EQ(requests("activationRequest", "psName").back(), (Values{"A", "B", "C", "D"}));
    select({4, 5});
    ASSERT_TRUE(press(kActivateButtonWidgetID)); // no fall-back to every font
    EXPECT_EQ(requests("activationRequest", "psName").size(), 2u);
    EXPECT_EQ(requests("activationRequest", "psName").back(), Values{});
    select({1});
    ASSERT_TRUE(press(kActivateButtonWidgetID)); // a match row activates its font from there
    EXPECT_EQ(requests("activationRequest", "containerID").back(), Values{"11"});
    select({0, 3, 4});
    ASSERT_TRUE(press(kInfoButtonWidgetID));
    EXPECT_EQ(requests("showRequest", "psName").back(), (Values{"A", "B"}));
    select({3});
    ASSERT_TRUE(press(kBuyButtonWidgetID));
    EXPECT_EQ(requests("buyRequest", "psName").back(), Values{"B"});
}

TEST_F(FontsDialog, ReplacingTwiceKeepsTheLaterChoiceAndCancellingMarksNothing) {
    auto choose = [&](int element) {
        runtime->loop().post([this, element] { // runs inside the replacement dialog's wait
            Galley::Dialog& replacer = *runtime->dialogs().frontDialog();
            EXPECT_EQ(widget(replacer, kReplacerPanelWidgetID).backgroundColor(),
                      kInterfaceMenuHighLight);
            element < 0 ? replacer.cancel()
                        : widget(replacer, kReplacerListBoxWidgetID).doubleClickElement(element);
        });
        ASSERT_TRUE(press(kReplaceButtonWidgetID));
    };
    select({0});
    choose(-1);
    EXPECT_TRUE(controller().replacements().empty());
    EXPECT_EQ(cell(0, kRowStatusWidgetID), "Several matches");

    select({0});
    choose(0);
    EXPECT_EQ(cell(0, kRowStatusWidgetID), "Replaced");
    // A rescan brings a fresh record for A, so its row can be chosen again.
    suite->documentFonts[0] = record("A", {2, true}, {"11", ""});
    notify();
    select({0});
    choose(2);
    using Map = std::map<std::string, std::string>;
    EXPECT_EQ(controller().replacements(), (Map{{"A", "Beta Regular"}}));
    EXPECT_TRUE(press(kOKButtonWidgetID));
    EXPECT_FALSE(dialog->IsOpen());
}

TEST_F(FontsDialog, NewsRebuildTheTreeWhileFontsAreMissingAndCloseItOnceNoneIs) {
    for (int used : {1, 2})
        suite->documentFonts[used]->stateFlag4 = true;
    notify();
    EXPECT_TRUE(dialog->IsOpen());
    EXPECT_EQ(tree->RowCount(), 4); // A with its two matches, and D: B and C arrived
    for (const auto& font : suite->documentFonts)
        font->stateFlag4 = true;
    notify();
    EXPECT_FALSE(dialog->IsOpen());
    EXPECT_EQ(presenter.closed.size(), 1u);
}

} // namespace
} // namespace UiTest
