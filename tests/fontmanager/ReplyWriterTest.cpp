#include "fontmanager/ReplyWriter.h"

#include <gtest/gtest.h>

namespace Vellumine {
namespace {

TEST(ReplyWriter, WritesTheLineForm) {
    const std::string reply = ReplyWriter("fontReply", "2.0")
                                  .openFont()
                                  .element("syncID", std::string("1"))
                                  .element("isActive", true)
                                  .fontInfo("12", "a face")
                                  .closeFont()
                                  .element("showWindow", std::string("0"))
                                  .finish();
    EXPECT_EQ(reply, "<cmd>fontReply</cmd>\n"
                     "<protocolVersion>2.0</protocolVersion>\n"
                     "<font>\n"
                     "<syncID>1</syncID>\n"
                     "<isActive>true</isActive>\n"
                     "<fontInfo>\n<containerID>12</containerID>\n"
                     "<description>a face</description>\n</fontInfo>\n"
                     "</font>\n"
                     "<showWindow>0</showWindow>\n"
                     "</cmd>\n");
}

TEST(ReplyWriter, KeepsAmpersandsRawAndPutsAngleBracketsIntoCdata) {
    EXPECT_EQ(ReplyWriter::encodeValue("Smith & Sons"), "Smith & Sons");
    EXPECT_EQ(ReplyWriter::encodeValue("&amp;"), "&amp;");
    EXPECT_EQ(ReplyWriter::encodeValue("a<b"), "a<![CDATA[<]]>b");
    EXPECT_EQ(ReplyWriter::encodeValue("x</cmd>"), "x<![CDATA[<]]>/cmd<![CDATA[>]]>");
    EXPECT_EQ(ReplyWriter::encodeValue("]]>"), "]]<![CDATA[>]]>");
    EXPECT_EQ(ReplyWriter::encodeValue("<<>>"), "<![CDATA[<<>>]]>");
}

TEST(ReplyWriter, ReplacesWhatXmlOrTheLineFormCannotCarry) {
    EXPECT_EQ(ReplyWriter::encodeValue("two\nlines\r\x01"), "two lines  ");
    EXPECT_EQ(ReplyWriter::encodeValue("tab\tkept"), "tab\tkept");
    EXPECT_EQ(ReplyWriter::encodeValue("caf\xC3\xA9"), "caf\xC3\xA9");
    EXPECT_EQ(ReplyWriter::encodeValue("bad\xC3"), "bad\xEF\xBF\xBD");
    EXPECT_EQ(ReplyWriter::encodeValue("\xC0\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD"); // overlong
    EXPECT_EQ(ReplyWriter::encodeValue("\xED\xA0\x80"),
              "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"); // surrogate
    EXPECT_EQ(ReplyWriter::encodeValue("\xF0\x9F\x98\x80"), "\xF0\x9F\x98\x80");
}

} // namespace
} // namespace Vellumine
