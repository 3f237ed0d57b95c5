#include "foundation/Exception.h"
#include "foundation/IXmlParser.h"

#include <gtest/gtest.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

using Tamrik::IXmlNode;
using Tamrik::IXmlParser;
using Tamrik::SmartPointer;

namespace {

SmartPointer<IXmlParser> parserFor(const std::string& text) {
    SmartPointer<IXmlParser> parser = IXmlParser::getInstance("LibXmlParser");
    parser->parseString(text);
    return parser;
}

std::string parseFailure(const std::string& text) {
    try {
        parserFor(text);
    } catch (const Tamrik::Exception& error) {
        return error.getUserMessage() + "@" + error.getFile() + ":" +
               std::to_string(error.getLine());
    }
    return "parsed";
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

} // namespace

TEST(XmlParserTest, FailedParsesRaiseTheDocumentedTexts) {
    EXPECT_TRUE(IXmlParser::getInstance("Expat").isNull());
    // libxml2 gives up on an empty buffer without recording an error.
    EXPECT_EQ(parseFailure(""), "LibXml: Document not parsed successfully: unknown error "
                                "message@libxmlparser:376");
    // An unescaped ampersand is exactly what the transport has to guard against.
    for (const char* text : {"<!-- only a comment -->", "<cmd>fontRequest</cmd><font>",
                             "<a>Black & White</a>"}) {
        const std::string failure = parseFailure(text);
        EXPECT_EQ(failure.rfind("LibXml: Document not parsed successfully: ", 0), 0u) << text;
        EXPECT_NE(failure.find("@libxmlparser:374"), std::string::npos) << failure;
    }
    SmartPointer<IXmlParser> parser = IXmlParser::getInstance("LibXmlParser");
    EXPECT_THAT([&] { parser->parse("/nonexistent/reply.xml"); },
                testing::ThrowsMessage<Tamrik::Exception>(
                    testing::StartsWith("Exception in file 'libxmlparser' at line 353")));
    EXPECT_EQ(parser->getRootNode(), nullptr); // a failed read leaves the parser empty
}

TEST(XmlParserTest, FailuresStayOffTheConsole) {
    // libxml2 reports encoding trouble on standard error unless it is kept quiet.
    testing::internal::CaptureStderr();
    parseFailure(
        std::string("<?xml version=\"1.0\" encoding=\"ISO-10646-UCS-4\"?><a/>\0\0\0\0", 56));
    parseFailure(std::string("\0\0\0<\0\0\0a\0\0\0>\xff\xff\xff\xff", 16));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(XmlParserTest, ChildrenIncludeTextAndTagHelpersSkipIt) {
    SmartPointer<IXmlParser> parser = parserFor("<r> <e/> <!--c--><f>x</f></r>");
    IXmlNode* root = parser->getRootNode();
    ASSERT_NE(root, nullptr);
    const std::vector<IXmlNode*> children = root->getChildren();
    ASSERT_EQ(children.size(), 5u);
    EXPECT_TRUE(children[0]->isText());
    EXPECT_EQ(children[1]->getName(), "e");
    EXPECT_TRUE(children[3]->isComment());
    EXPECT_EQ(root->getFirstTagChild(), children[1]);
    EXPECT_EQ(children[1]->getNextTagNode(), children[4]);
    EXPECT_EQ(children[4]->getNextTagNode(), nullptr);
    EXPECT_EQ(root->getFirstChild("f"), children[4]);
    EXPECT_EQ(root->getFirstChild("text"), children[0]); // text nodes are named "text"
    EXPECT_EQ(root->getChildren("F").size(), 0u);        // names compare exactly
    // Navigation hands out the same wrapper for the same node.
    EXPECT_EQ(root->getFirstChild(), children[0]);
    EXPECT_EQ(children[4]->getParent(), root);
    EXPECT_FALSE(root->hasParent());
    EXPECT_EQ(root->getContent(), "  x");
}

TEST(XmlParserTest, BuildingAddsAttributesAppendsOrEscapesContentAndWrites) {
    SmartPointer<IXmlParser> parser = IXmlParser::getInstance("LibXmlParser");
    IXmlNode* root = parser->createRootNode("root", "urn:example");
    root->setAttribute("cmd", "first");
    root->setAttribute("cmd", "second"); // adds a second attribute, the first stays
    EXPECT_EQ(root->getAttribute("cmd", "none"), "first");
    EXPECT_EQ(root->getAttribute("other", "none"), "none");
    IXmlNode* appended = root->addChild("a");
    appended->setContent("one");
    appended->setContent("two");
    EXPECT_EQ(appended->getContent(), "onetwo");
    IXmlNode* replaced = root->addChild("b");
    replaced->setContent("old");
    replaced->setContentCDATA("x < y & z");
    EXPECT_EQ(replaced->getContent(), "x < y & z");
    delete appended; // addChild's wrappers belong to the caller
    delete replaced;

    const auto file =
        std::filesystem::temp_directory_path() / ("xmltest-" + std::to_string(getpid()) + ".xml");
    parser->write(file);
    const std::string written = readFile(file);
    std::filesystem::remove(file);
    EXPECT_NE(written.find("<a>onetwo</a>"), std::string::npos);
    EXPECT_NE(written.find("<b>x &lt; y &amp; z</b>"), std::string::npos);
    EXPECT_EQ(written.find("CDATA"), std::string::npos);
    EXPECT_NE(written.find("<root xmlns=\"urn:example\" cmd=\"first\" cmd=\"second\">"),
              std::string::npos)
        << written;
    EXPECT_EQ(written.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>", 0), 0u);

    std::string untouched = "keep";
    parser->writeString(untouched);
    EXPECT_EQ(untouched, "keep");
}

TEST(XmlParserTest, ChildWrapperKeepsItsDocumentAlive) {
    IXmlNode* child = nullptr;
    {
        SmartPointer<IXmlParser> parser = IXmlParser::getInstance("LibXmlParser");
        parser->createRootNode("root", "")->setContent("r");
        child = parser->getRootNode()->addChild("kept");
    }
    child->setContent("still here");
    EXPECT_EQ(child->getContent(), "still here");
    EXPECT_EQ(child->getParent()->getName(), "root");
    delete child;
}

TEST(XmlParserTest, WideAndDeepDocumentsParseAndRelease) {
    std::string wide = "<cmd>";
    for (int i = 0; i < 200000; ++i) {
        wide += "<font/>";
    }
    wide += "</cmd>";
    SmartPointer<IXmlParser> parser = parserFor(wide);
    EXPECT_EQ(parser->getRootNode()->getChildren().size(), 200000u);

    std::string deep;
    for (int i = 0; i < 100000; ++i) {
        deep += "<a>";
    }
    EXPECT_NE(parseFailure(deep).find("@libxmlparser:374"), std::string::npos);
}

TEST(XmlParserTest, EntitiesNeitherExpandWithoutLimitNorReadFiles) {
    std::string laughs = "<?xml version=\"1.0\"?><!DOCTYPE l [<!ENTITY l0 \"ha\">";
    for (int i = 1; i < 10; ++i) {
        laughs += "<!ENTITY l" + std::to_string(i) + " \"";
        for (int k = 0; k < 10; ++k) {
            laughs += "&l" + std::to_string(i - 1) + ";";
        }
        laughs += "\">";
    }
    laughs += "]><l>&l9;</l>";
    // libxml2's amplification guard refuses the document before anything is expanded.
    EXPECT_NE(parseFailure(laughs).find("entity reference loop@libxmlparser:374"),
              std::string::npos);

    // An external entity is kept as a reference: the file behind it is never read.
    SmartPointer<IXmlParser> parser =
        parserFor("<?xml version=\"1.0\"?><!DOCTYPE r [<!ENTITY x SYSTEM "
                  "\"file:///etc/hostname\">]><r>&x;</r>");
    EXPECT_EQ(parser->getRootNode()->getContent(), "");
}
