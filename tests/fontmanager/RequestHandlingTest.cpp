#include "FontFixtures.h"

#include "fontmanager/ChangeForwarder.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/RequestDispatcher.h"
#include "fontmanager/SqliteCatalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <sstream>

namespace Vellumine {
namespace {

using namespace VellumineTest;

// The values of the element lines of one reply, per <font> block (block 0 is the text
// before the first font).
using Block = std::multimap<std::string, std::string>;

// The values of the element lines of one reply, per <font> block (block 0 is the text
// before the first font).
std::vector<Block> replyBlocks(const std::string& reply) {
    static const std::regex elementLine("<([A-Za-z]+)>(.*)</\\1>");
    std::vector<Block> blocks(1);
    std::istringstream lines(reply);
    std::smatch element;
    for (std::string line; std::getline(lines, line);) {
        if (line == "<font>") {
            blocks.emplace_back();
        } else if (std::regex_match(line, element, elementLine)) {
            blocks.back().emplace(element[1], element[2]);
        }
    }
    return blocks;
}

std::string value(const Block& block, const std::string& name) {
    const auto found = block.find(name);
    return found == block.end() ? "<absent>" : found->second;
}

// Each "name=value" must be the value of that element in the block.
void expectElements(const Block& block, const std::vector<std::string>& pairs) {
    for (const std::string& pair : pairs) {
        const std::string name = pair.substr(0, pair.find('='));
        EXPECT_EQ(name + "=" + value(block, name), pair);
    }
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

    PrivateFontconfig noSystemFonts; // the machine's fonts stay out of every reply
    ScratchFolder scratch;
    SqliteCatalog catalog{scratch.path() / "library.db"};
    Activation activation{catalog, scratch.path() / "fonts" / "vellumine"};
    int posts = 0;
    LibraryChanges changes{catalog, [this](const std::string&) {
                               ++posts;
                               return 0;
                           }};
    RequestDispatcher dispatcher{catalog, activation, changes};

    Block answerFont(const std::string& fontLines) {
        return replyBlocks(dispatcher.answer(fontRequest({fontLines}))).at(1);
    }

    std::int64_t type1Id = 0, openTypeId = 0, dejaVuId = 0;
};

TEST_F(RequestHandlingTest, FontPresentInTheRequestedTypeInAnotherTypeOrAbsent) {
    const auto blocks = replyBlocks(dispatcher.answer(fontRequest(
        {"<syncID>s1</syncID>\n<psName>NimbusRoman-Regular</psName>\n<type>T1</type>\n",
         "<syncID>s2</syncID>\n<psName>DejaVuSans</psName>\n<type>OT_T1</type>\n",
         "<syncID>9</syncID>\n<psName>Nowhere-Bold</psName>\n<familyName>Nowhere</familyName>\n"
         "<styleName>Bold</styleName>\n"})));
    ASSERT_EQ(blocks.size(), 4u);
    EXPECT_EQ(value(blocks[0], "protocolVersion"), "2.0");
    const std::string type1 = std::to_string(type1Id);
    const std::vector<std::string> expected[] = {
        // The only face of its type: activated before the answer.
        {"syncID=s1", "type=T1", "familyName=Nimbus Roman", "count=2", "typeMatchingCount=1",
         "typeMatchingContainerID=" + type1, "containerID=" + type1, "isActive=true",
         "isTypeMatchingActive=true"},
        // The document still needs its own type.
        {"syncID=s2", "type=OT_T1", "count=1", "typeMatchingCount=0",
         "typeMatchingContainerID=", "containerID=" + std::to_string(dejaVuId), "isActive=false"},
        // Absent: the request echoed.
        {"syncID=9", "psName=Nowhere-Bold", "styleName=Bold", "count=0",
         "containerID=", "type=all"}};
    for (std::size_t font = 0; font < 3; ++font) {
        SCOPED_TRACE("font " + std::to_string(font));
        expectElements(blocks[font + 1], expected[font]);
    }
    EXPECT_EQ(blocks[1].count("fontInfo"), 0u); // blocks of two children, counted below
    EXPECT_EQ(blocks[1].count("description"), 2u);
    EXPECT_EQ(value(blocks[3], "showWindow"), "0"); // trailing element after the last font
}

TEST_F(RequestHandlingTest, AsksToShowItsWindowWhenTheUserHasAChoice) {
    const std::string anyType = "<syncID>1</syncID>\n<psName>NimbusRoman-Regular</psName>\n";
    expectElements(answerFont(anyType), {"typeMatchingCount=2", "showWindow=1"});
    ASSERT_TRUE(activation.activate(openTypeId).succeeded());
    expectElements(answerFont(anyType),
                   {"showWindow=0", "isTypeMatchingActive=true",
                    "containerID=" + std::to_string(openTypeId)}); // the active one
}

TEST_F(RequestHandlingTest, ActivatesOnItsOwnOnlyWhereThereIsNoChoice) {
    const std::string bold =
        std::to_string(catalog.facesByPostScriptName("NimbusRoman-Bold")[0].id);
    struct Case {
        std::string font;
        std::string activated; // container id, or empty
        std::vector<std::string> expected;
    };
    for (const Case& c : {
             Case{"<psName>NimbusRoman-Regular</psName>\n<type>OT_T1</type>\n",
                  std::to_string(openTypeId),
                  {"showWindow=0"}},
             // Unknown PostScript name: family and style decide; no type asked, the face's.
             Case{"<psName>NimbusRom-Bd</psName>\n<familyName>NIMBUS ROMAN</familyName>\n"
                  "<styleName>bold</styleName>\n",
                  bold,
                  {"showWindow=0", "count=1", "type=OT_T1"}},
             // No style: the regular face, of two types, so a choice to make.
             Case{"<psName></psName>\n<familyName>Nimbus Roman</familyName>\n",
                  "",
                  {"showWindow=1", "count=2", "psName=NimbusRoman-Regular"}},
             Case{"<psName>DejaVuSans</psName>\n<type>T1</type>\n", "", {"showWindow=0"}},
         }) {
        SCOPED_TRACE(c.font);
        const Block font = answerFont(c.font);
        const auto automatic = catalog.autoActivatedLinks();
        ASSERT_EQ(automatic.size(), c.activated.empty() ? 0u : 1u);
        if (!c.activated.empty()) {
            EXPECT_EQ(std::to_string(automatic[0].faceId) + " " + automatic[0].autoFor,
                      c.activated + " InDn");
            expectElements(
                font, {"isActive=true", "isTypeMatchingActive=true", "containerID=" + c.activated});
            activation.deactivate(automatic[0].faceId);
        }
        expectElements(font, c.expected);
    }
    EXPECT_EQ(posts, 2); // each automatic activation announced

    // Off, the user decides: the application is asked to show its fonts dialog rather than
    // to wait for a font that will not come.
    catalog.setAutoActivation(false);
    expectElements(answerFont("<psName>DejaVuSans</psName>\n"), {"isActive=false", "showWindow=1"});
    EXPECT_EQ(catalog.activeFaceCount(), 0);
}

// What fontconfig lists (here DejaVu and the URW Type 1 faces) is present and active,
// without a container, and vellumine never activates its own copy of it.
TEST_F(RequestHandlingTest, FontsTheSystemHasCountAsActiveWithoutContainer) {
    const auto installed = scratch.path() / "installed";
    std::filesystem::create_directories(installed);
    // The activation folder is scanned too, as at home, but its faces are vellumine's own.
    const PrivateFontconfig system(
        {dejaVuFolder, urwType1Folder, installed, scratch.path() / "fonts"});
    // Loaded in the background from the start, as the server does; the first request takes
    // the result in, later ones look again only when something changed.
    dispatcher.preloadSystemFonts();
    const auto bold = catalog.facesByPostScriptName("NimbusRoman-Bold").at(0).id;
    ASSERT_TRUE(activation.activate(bold).succeeded());
    struct Case {
        std::string font;
        std::vector<std::string> expected;
    };
    const std::vector<Case> cases = {
        {"<psName>DejaVuSans</psName>\n", // in the library too
         {"count=2", "typeMatchingCount=2", "isActive=true", "isTypeMatchingActive=true",
          "containerID=", "typeMatchingContainerID=", "type=TT"}},
        {"<familyName>dejavu serif</familyName>\n<styleName>BOLD</styleName>\n<type>OT_T1</type>\n",
         {"psName=DejaVuSerif-Bold", "count=1", "typeMatchingCount=0", "isActive=true",
          "isTypeMatchingActive=false"}},
        {"<psName>NimbusRoman-Regular</psName>\n<type>T1</type>\n",
         {"count=3", "typeMatchingCount=2", "isTypeMatchingActive=true",
          "containerID=", "showWindow=0"}},
        // The library's OpenType face active (and linked), the Type 1 face on the system.
        {"<psName>NimbusRoman-Bold</psName>\n<type>T1</type>\n",
         {"count=2", "typeMatchingCount=1", "containerID=" + std::to_string(bold),
          "typeMatchingContainerID="}},
        {"<psName>Nowhere-Bold</psName>\n", {"count=0", "isActive=false"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.font);
        expectElements(answerFont(c.font), c.expected);
    }
    EXPECT_EQ(catalog.activeFaceCount(), 1);
    EXPECT_EQ(posts, 0);
    const auto dejaVu = answerFont(cases[0].font);
    const auto [first, last] = dejaVu.equal_range("description");
    EXPECT_TRUE(std::any_of(first, last, [](const auto& description) {
        return description.second == dejaVuSans.filename().string() + " in " +
                                         dejaVuSans.parent_path().string() +
                                         ", installed on the system";
    }));
    // Installed since the last request, within the same second: the next request sees it.
    const std::string c059 = "<psName>C059-Roman</psName>\n<type>OT_T1</type>\n";
    expectElements(answerFont(c059),
                   {"count=1", "typeMatchingCount=0", "isTypeMatchingActive=false"}); // Type 1
    std::filesystem::create_symlink(urwOpenTypeFolder / "C059-Roman.otf", installed / "C059.otf");
    expectElements(answerFont(c059),
                   {"count=2", "typeMatchingCount=1", "isTypeMatchingActive=true"});

    catalog.setSystemFonts(false); // the library alone, as before
    expectElements(answerFont(cases[0].font),
                   {"count=1", "isActive=true", "containerID=" + std::to_string(dejaVuId)});
    expectElements(answerFont(cases[1].font), {"count=0"});
}

TEST_F(RequestHandlingTest, RepliesStayWithinTheirSizeLimit) {
    const std::string font = "<psName>NimbusRoman-Regular</psName>\n"; // two faces
    const std::string request = fontRequest(std::vector<std::string>(20, font));
    const std::size_t full = dispatcher.answer(request).size();
    struct Case {
        ReplyLimits limits;
        std::size_t descriptions; // <description> lines in the reply
        bool refused;
    };
    for (const Case& c : {Case{{full, 100}, 40, false}, Case{{full, 1}, 20, false},
                          Case{{full - 1, 100}, 0, false}, Case{{full / 4, 100}, 0, true}}) {
        SCOPED_TRACE(std::to_string(c.limits.maximumBytes) + " bytes, " +
                     std::to_string(c.limits.maximumFacesListed) + " faces");
        RequestDispatcher bounded{catalog, activation, changes, {"2.0", {}, c.limits}};
        const std::string reply = bounded.answer(request);
        const auto blocks = replyBlocks(reply);
        EXPECT_LE(reply.size(), c.limits.maximumBytes);
        std::size_t descriptions = 0;
        for (const auto& block : blocks) {
            descriptions += block.count("description");
        }
        EXPECT_EQ(descriptions, c.descriptions);
        EXPECT_EQ(reply.starts_with("<cmd>errorReply</cmd>"), c.refused) << reply.substr(0, 200);
        if (!c.refused) {
            ASSERT_EQ(blocks.size(), 21u);
            expectElements(blocks[20], {"count=2", "showWindow=1"});
        }
    }
}

TEST_F(RequestHandlingTest, ActivationRequestActivatesOnlyCatalogContainers) {
    std::string request = "<cmd>activationRequest</cmd>\n";
    for (const std::string& id : {std::to_string(type1Id), std::string("/etc/passwd"),
                                  std::string("-3"), std::string("999999")}) {
        request += "<font>\n<containerID>" + id + "</containerID>\n<psName>x</psName>\n</font>\n";
    }
    const auto blocks = replyBlocks(dispatcher.answer(request + "</cmd>\n"));
    ASSERT_EQ(blocks.size(), 5u);
    for (int i = 1; i <= 4; ++i) {
        expectElements(blocks[i],
                       {std::string("activationSuccessfull=") + (i == 1 ? "true" : "false")});
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
    std::string show = fontRequest({"<containerID>" + std::to_string(dejaVuId) +
                                    "</containerID>\n<psName>DejaVuSans</psName>\n"});
    show.replace(0, show.find('\n'), "<cmd>showRequest</cmd>");
    expectElements(replyBlocks(dispatcher.answer(show))[1], {"count=1", "type=TT"});
    const std::string bought = dispatcher.answer(
        "<cmd>buyRequest</cmd>\n<font>\n<psName>Nowhere-Bold</psName>\n</font>\n</cmd>\n");
    EXPECT_NE(bought.find("wish list"), std::string::npos);

    const auto requests = catalog.windowlessRequests("", 10);
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].kind + " " + requests[0].postScriptName, "buy Nowhere-Bold");
    EXPECT_EQ(requests[1].kind + " " + requests[1].containerID + " " + requests[1].application,
              "show " + std::to_string(dejaVuId) + " InDn");
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
    for (const char* kind : {"FSBC", "FSBC", "FFSC"}) {
        changes.announce(kind);
    }
    EXPECT_EQ(forwarder.forwardNewChanges(), 2);
    EXPECT_EQ(sent, (std::vector<std::string>{"InDn VLM4/FSBC", "InDn VLM4/FFSC"}));
    EXPECT_EQ(forwarder.forwardNewChanges(), 0);
}

} // namespace
} // namespace Vellumine
