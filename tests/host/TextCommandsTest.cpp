// Applying families and faces to ranges of text through the SDK's commands.
#include "HostTestSupport.h"
#include "host/session/GalleySession.h"
#include "sdk/IAttributeStrand.h"
#include "sdk/ICommand.h"
#include "sdk/IComposeScanner.h"
#include "sdk/IDataBase.h"
#include "sdk/IStoryList.h"
#include "sdk/ITextAttrUtils.h"
#include "sdk/ITextModel.h"

#include <gtest/gtest.h>

using Galley::FontKey;
using HostTest::face;

namespace {

class TextCommands : public ::testing::Test {
protected:
    HostTest::TempDir dir;
    HostTest::FixedFaces faces;
    std::unique_ptr<Galley::GalleySession> session;
    std::unique_ptr<Galley::IdmlDocument> doc;

    void open(const std::string& description) {
        faces.faces = {face("NimbusSans-Bold", "Nimbus Sans", "Bold", IPMFont::kOpenTypeCFF)};
        session = std::make_unique<Galley::GalleySession>(faces);
        doc = HostTest::openDescribed(dir, session->fonts(), description);
    }
    ITextModel* firstStory() {
        return doc->GetDataBase()->InstantiateTextModel(doc->GetStoryList()->GetNthTextModelUID(0));
    }
};

const char* kTwoFonts = R"(
font "Gone Serif" Regular GoneSerif-Regular Type1
pstyle Body font="Gone Serif" style=Regular
story
para pstyle=Body
run text="keep me "
run font="Other" style=Italic text="other"
run text=" replace\n"
para pstyle=Body
run text="and me"
)";

TEST_F(TextCommands, ReplacementChangesOnlyRunsOfThatPostScriptName) {
    open(kTwoFonts);
    EXPECT_EQ(HostTest::replaceFontThroughSdk(doc.get(), "GoneSerif-Regular", "Nimbus Sans\tBold"),
              3);
    auto fonts = HostTest::runFonts(*doc);
    EXPECT_EQ(fonts, (std::vector<FontKey>{{"Nimbus Sans", "Bold"},
                                           {"Other", "Italic"},
                                           {"Nimbus Sans", "Bold"},
                                           {"Nimbus Sans", "Bold"}}));
    EXPECT_TRUE(doc->IsModified());
    doc->usage().Update();
    // The text no longer uses Gone Serif, but the Body style still names it.
    EXPECT_EQ(HostTest::usageNames(doc->usage().missing()),
              (std::vector<std::string>{"Other/Italic", "Gone Serif/Regular"}));
}

TEST_F(TextCommands, UnknownReplacementLeavesTheTextAlone) {
    open(kTwoFonts);
    EXPECT_EQ(HostTest::replaceFontThroughSdk(doc.get(), "GoneSerif-Regular", "No Such Font"), 0);
    EXPECT_FALSE(doc->IsModified());
}

TEST_F(TextCommands, ApplyingInsideARunSplitsItAndKeepsTheText) {
    open(kTwoFonts);
    ITextModel* model = firstStory();
    const int before = model->TotalLength();
    ITextAttrUtils* utils = gSession->GetTextAttrUtils();
    auto faceAttr = utils->CreateFontFaceAttribute(PMString("Bold"));
    auto command = utils->BuildApplyTextAttrCmd(model, 2, 3, *faceAttr); // "ep " of "keep me "
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(CmdUtils::ProcessCommand(command.get()), kSuccess);
    EXPECT_EQ(command->Do(), kFailure); // a command runs once

    EXPECT_EQ(model->TotalLength(), before);
    IAttributeStrand* strand = model->QueryFontStrand();
    EXPECT_EQ(strand->GetRunLength(0), 2);
    EXPECT_EQ(strand->GetRunLength(2), 3);
    EXPECT_EQ(strand->GetRunLength(5), 3);
    IComposeScanner* scanner = model->QueryComposeScanner();
    EXPECT_EQ(scanner->QueryFontFaceAttribute(2, 5)->GetFontName().GetUTF8String(), "Bold");
    EXPECT_EQ(scanner->QueryFontFaceAttribute(0, 2)->GetFontName().GetUTF8String(), "Regular");
    EXPECT_EQ(scanner->QueryFontFaceAttribute(0, 5), nullptr);   // mixed
    EXPECT_NE(scanner->QueryFontFamilyAttribute(0, 5), nullptr); // one family throughout

    std::string xml = doc->stories().front()->serialize();
    EXPECT_NE(xml.find("<Content>ke</Content>"), std::string::npos) << xml;
    EXPECT_NE(xml.find("<Content>ep </Content>"), std::string::npos) << xml;
    EXPECT_NE(xml.find("<Content>me </Content>"), std::string::npos) << xml;
}

TEST_F(TextCommands, CommandsRefuseRangesOutsideTheTextAndUnknownFamilies) {
    open(kTwoFonts);
    ITextModel* model = firstStory();
    ITextAttrUtils* utils = gSession->GetTextAttrUtils();
    auto faceAttr = utils->CreateFontFaceAttribute(PMString("Bold"));
    EXPECT_EQ(utils->BuildApplyTextAttrCmd(model, model->TotalLength(), 1, *faceAttr), nullptr);
    EXPECT_EQ(utils->BuildApplyTextAttrCmd(model, -1, 2, *faceAttr), nullptr);
    EXPECT_EQ(utils->BuildApplyTextAttrCmd(nullptr, 0, 1, *faceAttr), nullptr);
    auto noFamily = utils->CreateFontFamilyAttribute(9999);
    EXPECT_EQ(utils->BuildApplyTextAttrCmd(model, 0, 1, *noFamily), nullptr);
    EXPECT_EQ(CmdUtils::ProcessCommand(nullptr), kFailure);
    EXPECT_EQ(model->QueryFontStrand()->GetRunLength(model->TotalLength()), 0);
}

} // namespace
