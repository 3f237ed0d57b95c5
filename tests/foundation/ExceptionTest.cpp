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

TEST(ExceptionTest, DescriptionLeavesOutEmptyPartsAndPrintsUnknownPlaces) {
    const struct {
        Exception error;
        const char* description;
    } rows[] = {
        {{"LibXml: Document empty.", "libxmlparser", 334, "<cmd/>"},
         "Exception in file 'libxmlparser' at line 334\n    User Message : LibXml: Document empty."
         "\n---vvv----- CODE SNIPPET -----vvv---\n<cmd/>\n---^^^--- END CODE SNIPPET ---^^^---"},
        {{"", "mutex", 0, ""}, "Exception in file 'mutex' at line 0"},
        {{"", "", Exception::unknownLine, ""}, "Exception in file <unknown> at line <unknown>"},
        // Only the all-ones value means unknown: its neighbour prints as a number.
        {{"", "f", 0xFFFFFFFEul, ""}, "Exception in file 'f' at line 4294967294"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.error.description(), row.description);
    }
}

TEST(ExceptionTest, DerivedNameShowsInWhatWhichIsBuiltOnce) {
    const ParseError error("bad", "VLMController", 346, "");
    try {
        throw error;
    } catch (const std::exception& caught) {
        EXPECT_STREQ(caught.what(),
                     "ParseError in file 'VLMController' at line 346\n    User Message : bad");
        EXPECT_EQ(caught.what(), caught.what());
    }
}
