#include "FontFixtures.h"

#include "fontmanager/ChangeForwarder.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/RequestDispatcher.h"

#include <gtest/gtest.h>

#include <map>

namespace Vellumine {
namespace {

using namespace VellumineTest;

// The values of the element lines of one reply, per <font> block (block 0 is the text
// outside any font).
std::vector<std::multimap<std::string, std::string>> replyBlocks(const std::string& reply) {
    std::vector<std::multimap<std::string, std::string>> blocks(1);
    std::size_t at = 0;
    while (at < reply.size()) {
        const auto end = reply.find('\n', at);
        const std::string line = reply.substr(at, end - at);
        at = end + 1;
        if (line == "<font>") {
            blocks.emplace_back();
        }
        const auto close = line.find('>');
        const auto closing = line.rfind("</");
        if (line.size() > 2 && line[0] == '<' && closing != std::string::npos && closing > close) {
            blocks.back().emplace(line.substr(1, close - 1),
                                  line.substr(close + 1, closing - close - 1));
        }
    }
    return blocks;
}

std::string value(const std::multimap<std::string, std::string>& block, const std::string& name) {
    const auto found = block.find(name);
    return found == block.end() ? "<absent>" : found->second;
}

std::string fontRequest(const std::vector<std::string>& fontLines) {
    std::string text = "<cmd>fontRequest</cmd>\n<targetApp>InDn</targetApp>\n"
                       "<targetClass>VLM4</targetClass>\n<protocolVersion>1.00</protocolVersion>\n";
    for (const auto& lines : fontLines) {
        text += "<font>\n" + lines + "</font>\n";
    }
    return text + "</cmd>\n";
}

class RequestHandlingTest : public testing::Test {
protected:
    void SetUp() override {
        FaceReader reader;
        LibraryImporter(catalog, reader)
            .add({nimbusRomanType1, nimbusRomanOpenType, dejaVuSans,
                  urwOpenTypeFolder / "NimbusRoman-Bold.otf"});
        type1Id = catalog.facesByPostScriptName("NimbusRoman-Regular").at(0).id;
        openTypeId = catalog.facesByPostScriptName("NimbusRoman-Regular").at(1).id;
        dejaVuId = catalog.facesByPostScriptName("DejaVuSans").at(0).id;
    }

    ScratchFolder scratch;
    Catalog catalog{scratch.path() / "library.db"};
    Activation activation{catalog, scratch.path() / "fonts" / "vellumine"};
    int posts = 0;
    LibraryChanges changes{catalog, [this](const std::string&) {
                               ++posts;
                               return 0;
                           }};
    RequestDispatcher dispatcher{catalog, activation, changes};
    std::int64_t type1Id = 0, openTypeId = 0, dejaVuId = 0;
};

TEST_F(RequestHandlingTest, FontPresentInTheRequestedType) {
    const auto blocks = replyBlocks(dispatcher.answer(fontRequest(
        {"<syncID>s1</syncID>\n<psName>NimbusRoman-Regular</psName>\n<type>T1</type>\n"})));
    ASSERT_EQ(blocks.size(), 2u);
    const auto& font = blocks[1];
    EXPECT_EQ(value(blocks[0], "protocolVersion"), "2.0");
    EXPECT_EQ(value(font, "syncID"), "s1");
    EXPECT_EQ(value(font, "type"), "T1");
    EXPECT_EQ(value(font, "familyName"), "Nimbus Roman");
    EXPECT_EQ(value(font, "count"), "2");
    EXPECT_EQ(value(font, "typeMatchingCount"), "1");
    EXPECT_EQ(value(font, "typeMatchingContainerID"), std::to_string(type1Id));
    EXPECT_EQ(value(font, "containerID"), std::to_string(type1Id));
    EXPECT_EQ(value(font, "isActive"), "false");
    EXPECT_EQ(font.count("fontInfo"), 0u); // blocks of two children, counted below
    EXPECT_EQ(font.count("description"), 2u);
    EXPECT_EQ(value(blocks[1], "showWindow"), "0"); // trailing element after the last font
}

TEST_F(RequestHandlingTest, FontPresentOnlyInAnotherType) {
    const auto font = replyBlocks(dispatcher.answer(
        fontRequest({"<syncID>s</syncID>\n<psName>DejaVuSans</psName>\n<type>OT_T1</type>\n"})))[1];
    EXPECT_EQ(value(font, "count"), "1");
    EXPECT_EQ(value(font, "typeMatchingCount"), "0");
    EXPECT_EQ(value(font, "typeMatchingContainerID"), "");
    EXPECT_EQ(value(font, "containerID"), std::to_string(dejaVuId));
    EXPECT_EQ(value(font, "type"), "OT_T1"); // the document still needs its own type
}

TEST_F(RequestHandlingTest, FontAbsentEchoesTheRequest) {
    const auto font = replyBlocks(dispatcher.answer(fontRequest(
        {"<syncID>9</syncID>\n<psName>Nowhere-Bold</psName>\n<familyName>Nowhere</familyName>\n"
         "<styleName>Bold</styleName>\n"})))[1];
    EXPECT_EQ(value(font, "psName"), "Nowhere-Bold");
    EXPECT_EQ(value(font, "styleName"), "Bold");
    EXPECT_EQ(value(font, "count"), "0");
    EXPECT_EQ(value(font, "containerID"), "");
    EXPECT_EQ(value(font, "type"), "all");
}

TEST_F(RequestHandlingTest, FallsBackToFamilyAndStyle) {
    const auto blocks = replyBlocks(dispatcher.answer(fontRequest(
        {"<syncID>a</syncID>\n<psName>NimbusRom-Bd</psName>\n"
         "<familyName>nimbus roman</familyName>\n<styleName>Bold</styleName>\n",
         "<syncID>b</syncID>\n<psName></psName>\n<familyName>Nimbus Roman</familyName>\n"})));
    EXPECT_EQ(value(blocks[1], "count"), "1");
    EXPECT_EQ(value(blocks[1], "type"), "OT_T1"); // no type asked: the offered face's
    EXPECT_EQ(value(blocks[2], "count"), "2");    // no style: the regular faces
    EXPECT_EQ(value(blocks[2], "psName"), "NimbusRoman-Regular");
}

TEST_F(RequestHandlingTest, AsksToShowItsWindowWhenTheUserHasAChoice) {
    const std::string anyType =
        fontRequest({"<syncID>1</syncID>\n<psName>NimbusRoman-Regular</psName>\n"});
    auto blocks = replyBlocks(dispatcher.answer(anyType));
    EXPECT_EQ(value(blocks[1], "typeMatchingCount"), "2");
    EXPECT_EQ(value(blocks.back(), "showWindow"), "1");

    ASSERT_TRUE(activation.activate(openTypeId).succeeded());
    blocks = replyBlocks(dispatcher.answer(anyType));
    EXPECT_EQ(value(blocks.back(), "showWindow"), "0");
    EXPECT_EQ(value(blocks[1], "isTypeMatchingActive"), "true");
    EXPECT_EQ(value(blocks[1], "containerID"), std::to_string(openTypeId)); // the active one
}

TEST_F(RequestHandlingTest, ActivationRequestActivatesOnlyCatalogContainers) {
    const std::string reply = dispatcher.answer(
        "<cmd>activationRequest</cmd>\n<font>\n<containerID>" + std::to_string(type1Id) +
        "</containerID>\n<psName>NimbusRoman-Regular</psName>\n</font>\n"
        "<font>\n<containerID>/etc/passwd</containerID>\n<psName>x</psName>\n</font>\n"
        "<font>\n<containerID>-3</containerID>\n<psName>y</psName>\n</font>\n"
        "<font>\n<containerID>999999</containerID>\n<psName>z</psName>\n</font>\n</cmd>\n");
    const auto blocks = replyBlocks(reply);
    ASSERT_EQ(blocks.size(), 5u);
    EXPECT_EQ(value(blocks[1], "activationSuccessfull"), "true");
    for (int i = 2; i <= 4; ++i) {
        EXPECT_EQ(value(blocks[i], "activationSuccessfull"), "false") << i;
    }
    EXPECT_TRUE(catalog.face(type1Id)->active);
    EXPECT_EQ(catalog.activeFaceCount(), 1);
    EXPECT_EQ(posts, 1);
    ASSERT_EQ(catalog.changesAfter(0).size(), 1u);
    EXPECT_EQ(catalog.changesAfter(0)[0].kind, "FSBC");

    dispatcher.answer("<cmd>activationRequest</cmd>\n<font>\n<containerID>" +
                      std::to_string(type1Id) + "</containerID>\n</font>\n</cmd>\n");
    EXPECT_EQ(posts, 1); // nothing changed, nothing announced
}

TEST_F(RequestHandlingTest, ShowAndBuyRequestsAreRecorded) {
    const auto shown = replyBlocks(dispatcher.answer(
        "<cmd>showRequest</cmd>\n<targetApp>InDn</targetApp>\n<targetClass>VLM4</targetClass>\n"
        "<font>\n<containerID>" +
        std::to_string(dejaVuId) +
        "</containerID>\n<psName>DejaVuSans</psName>\n</font>\n</cmd>\n"));
    EXPECT_EQ(value(shown[1], "count"), "1");
    EXPECT_EQ(value(shown[1], "type"), "TT");
    const std::string bought = dispatcher.answer(
        "<cmd>buyRequest</cmd>\n<font>\n<psName>Nowhere-Bold</psName>\n</font>\n</cmd>\n");
    EXPECT_NE(bought.find("wish list"), std::string::npos);

    const auto requests = catalog.windowlessRequests("", 10);
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].kind, "buy");
    EXPECT_EQ(requests[0].postScriptName, "Nowhere-Bold");
    EXPECT_EQ(requests[1].kind, "show");
    EXPECT_EQ(requests[1].containerID, std::to_string(dejaVuId));
    EXPECT_EQ(requests[1].application, "InDn");
}

TEST_F(RequestHandlingTest, RefusalsAreErrorRepliesWithTheProtocolVersion) {
    for (const std::string& text :
         {std::string("not a request"), std::string("<cmd>formatDisk</cmd>\n</cmd>\n"),
          std::string("<cmd>fontRequest</cmd>\n<font>\n"), std::string(17 * 1024 * 1024, '<')}) {
        const auto blocks = replyBlocks(dispatcher.answer(text));
        EXPECT_EQ(value(blocks[0], "protocolVersion"), "2.0");
        EXPECT_NE(value(blocks[0], "error"), "<absent>");
    }
}

TEST_F(RequestHandlingTest, RemembersTargetsAndForwardsChangesToThem) {
    dispatcher.answer(fontRequest({}));
    dispatcher.answer("<cmd>fontRequest</cmd>\n<targetApp>bad signature</targetApp>\n</cmd>\n");
    ASSERT_EQ(catalog.targets().size(), 1u);

    std::vector<std::string> sent;
    ChangeForwarder forwarder(
        catalog, [&](const std::string& signature, const Platform::AppEvent& event) {
            sent.push_back(signature + " " + event.eventClass + "/" + event.eventID);
            return 0;
        });
    changes.announce("FFSC"); // from before the server started: not forwarded
    forwarder.skipPastChanges();
    EXPECT_EQ(forwarder.forwardNewChanges(), 0);
    changes.announce("FSBC");
    changes.announce("FSBC");
    changes.announce("FFSC");
    EXPECT_EQ(forwarder.forwardNewChanges(), 2);
    EXPECT_EQ(sent, (std::vector<std::string>{"InDn VLM4/FSBC", "InDn VLM4/FFSC"}));
    EXPECT_EQ(forwarder.forwardNewChanges(), 0);
}

} // namespace
} // namespace Vellumine
