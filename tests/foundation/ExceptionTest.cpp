#include "foundation/Exception.h"

#include <gtest/gtest.h>

using Tamrik::Exception;

namespace {

class ParseError : public Exception {
public:
    using Exception::Exception;
    std::string exceptionName() const override { return "ParseError"; }
};

} // namespace

TEST(ExceptionTest, DescribesFileLineMessageAndSnippet) {
    const Exception full("LibXml: Document empty.", "libxmlparser", 334, "<cmd/>");
    EXPECT_EQ(full.description(), "Exception in file 'libxmlparser' at line 334"
                                  "\n    User Message : LibXml: Document empty."
                                  "\n---vvv----- CODE SNIPPET -----vvv---\n<cmd/>"
                                  "\n---^^^--- END CODE SNIPPET ---^^^---");
}

TEST(ExceptionTest, HeaderAloneWhenMessageAndSnippetAreEmpty) {
    const Exception bare("", "mutex", 0, "");
    EXPECT_EQ(bare.description(), "Exception in file 'mutex' at line 0");
    EXPECT_EQ(bare.descriptionMessage(), "");
    EXPECT_EQ(bare.descriptionCode(), "");
}

TEST(ExceptionTest, UnknownFileAndLinePrintAsUnknown) {
    const Exception nowhere("boom", "", Exception::unknownLine, "");
    EXPECT_EQ(nowhere.descriptionHeader(), "Exception in file <unknown> at line <unknown>");
    // Only the all-ones value means unknown: its neighbour prints as a number.
    const Exception large("", "f", 0xFFFFFFFEul, "");
    EXPECT_EQ(large.descriptionHeader(), "Exception in file 'f' at line 4294967294");
}

TEST(ExceptionTest, WhatIsBuiltOnceAndStaysTheSame) {
    const Exception error("message", "protocol", 69, "");
    const char* first = error.what();
    const char* second = error.what();
    EXPECT_EQ(first, second);
    EXPECT_STREQ(first, error.description().c_str());
}

TEST(ExceptionTest, DerivedNameShowsInHeaderAndWhat) {
    const ParseError error("bad", "VLMController", 346, "");
    EXPECT_EQ(error.descriptionHeader(), "ParseError in file 'VLMController' at line 346");
    try {
        throw error;
    } catch (const std::exception& caught) {
        EXPECT_STREQ(caught.what(),
                     "ParseError in file 'VLMController' at line 346\n    User Message : bad");
    }
}
