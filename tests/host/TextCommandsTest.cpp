// Applying families and faces to ranges of text through the SDK's commands.
#include "HostTestSupport.h"

namespace {

class TextCommands : public HostTest::SessionTest<VLMTest::ListedFaces> {
protected:
    std::unique_ptr<Galley::IdmlDocument> doc;
    ITextModel* model = nullptr;
    ITextAttrUtils* utils = nullptr;

    void SetUp() override {
        faces.faces = {
            VLMTest::ListedFaces::face("NimbusSans-Bold", "Nimbus Sans", "Bold", IPMFont::kOpenTypeCFF)};
        doc = open(R"(
font "Gone Serif" Regular GoneSerif-Regular Type1
pstyle Body font="Gone Serif" style=Regular
story
para pstyle=Body
run text="keep me "
run font="Other" style=Italic text="other"
run text=" replace\n"
para pstyle=Body
run text="and me"
)");
        model =
            doc->GetDataBase()->InstantiateTextModel(doc->GetStoryList()->GetNthTextModelUID(0));
        utils = gSession->GetTextAttrUtils();
    }
};

TEST_F(TextCommands, ReplacementChangesOnlyRunsOfThatPostScriptName) {
    EXPECT_EQ(HostTest::replaceFontThroughSdk(doc.get(), "GoneSerif-Regular", "No Such Font"), 0);
    EXPECT_FALSE(doc->IsModified());

    EXPECT_EQ(HostTest::replaceFontThroughSdk(doc.get(), "GoneSerif-Regular", "Nimbus Sans\tBold"),
              3);
    EXPECT_EQ(HostTest::runFonts(*doc),
              (std::vector<std::string>{"Nimbus Sans/Bold", "Other/Italic", "Nimbus Sans/Bold",
                                        "Nimbus Sans/Bold"}));
    EXPECT_TRUE(doc->IsModified());
    doc->usage().Update();
    // The text no longer uses Gone Serif, but the Body style still names it.
    EXPECT_EQ(HostTest::usageNames(doc->usage().missing()),
              (std::vector<std::string>{"Other/Italic", "Gone Serif/Regular"}));
}

TEST_F(TextCommands, ApplyingInsideARunSplitsItAndKeepsTheText) {
    const int before = model->TotalLength();
    auto command = utils->BuildApplyTextAttrCmd(model, 2, 3,
                                                *utils->CreateFontFaceAttribute(PMString("Bold")));
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(CmdUtils::ProcessCommand(command.get()), kSuccess);
    EXPECT_EQ(command->Do(), kFailure); // a command runs once

    EXPECT_EQ(model->TotalLength(), before);
    IAttributeStrand* strand = model->QueryFontStrand();
    for (auto [at, length] : {std::pair{0, 2}, {2, 3}, {5, 3}})
        EXPECT_EQ(strand->GetRunLength(at), length) << at;
    IComposeScanner* scanner = model->QueryComposeScanner();
    EXPECT_EQ(scanner->QueryFontFaceAttribute(2, 5)->GetFontName().GetUTF8String(), "Bold");
    EXPECT_EQ(scanner->QueryFontFaceAttribute(0, 2)->GetFontName().GetUTF8String(), "Regular");
    EXPECT_EQ(scanner->QueryFontFaceAttribute(0, 5), nullptr);   // mixed
    EXPECT_NE(scanner->QueryFontFamilyAttribute(0, 5), nullptr); // one family throughout

    std::string xml = doc->stories().front()->serialize();
    for (const char* content :
         {"<Content>ke</Content>", "<Content>ep </Content>", "<Content>me </Content>"})
        EXPECT_NE(xml.find(content), std::string::npos) << xml;
}

TEST_F(TextCommands, CommandsRefuseRangesOutsideTheTextAndUnknownFamilies) {
    auto face = utils->CreateFontFaceAttribute(PMString("Bold"));
    EXPECT_EQ(utils->BuildApplyTextAttrCmd(model, model->TotalLength(), 1, *face), nullptr);
    EXPECT_EQ(utils->BuildApplyTextAttrCmd(model, -1, 2, *face), nullptr);
    EXPECT_EQ(utils->BuildApplyTextAttrCmd(nullptr, 0, 1, *face), nullptr);
    EXPECT_EQ(utils->BuildApplyTextAttrCmd(model, 0, 1, *utils->CreateFontFamilyAttribute(9999)),
              nullptr);
    EXPECT_EQ(CmdUtils::ProcessCommand(nullptr), kFailure);
    EXPECT_EQ(model->QueryFontStrand()->GetRunLength(model->TotalLength()), 0);
}

} // namespace
