// Names from documents and file systems, printed in the fonts table and in JSON.
#include "host/app/PrintableText.h"

#include <gtest/gtest.h>

namespace {

std::string replacements(int count) {
    std::string out;
    while (count-- > 0)
        out += "\\ufffd";
    return out;
}

TEST(PrintableText, NoNameBreaksTheTableOrTheJson) {
    struct Case {
        std::string name, table, json;
    } cases[] = {
        {"Caf\xC3\xA9 \xE6\x96\x87", "Caf\xC3\xA9 \xE6\x96\x87", "\"Caf\xC3\xA9 \xE6\x96\x87\""},
        {"Forged\nC059\tRoman", "Forged\\nC059\\tRoman", "\"Forged\\nC059\\tRoman\""},
        {"esc\x1b[2J\x7f", "esc\\x1b[2J\\x7f", "\"esc\\u001b[2J\x7f\""},
        {"back\\slash \"q\"", "back\\\\slash \"q\"", "\"back\\\\slash \\\"q\\\"\""},
        {"latin1 \xE9t\xE9", "latin1 \\xe9t\\xe9", "\"latin1 \\ufffdt\\ufffd\""},
        {"c1 \xC2\x85", "c1 \\u0085", "\"c1 \xC2\x85\""},
        // overlong, surrogate, beyond U+10FFFF, cut short: every byte stands alone
        {"\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80\xE6\x96",
         "\\xc0\\xaf\\xed\\xa0\\x80\\xf4\\x90\\x80\\x80\\xe6\\x96", "\"" + replacements(11) + "\""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Galley::printableText(c.name), c.table) << c.name;
        EXPECT_EQ(Galley::jsonString(c.name), c.json) << c.name;
    }
}

} // namespace
