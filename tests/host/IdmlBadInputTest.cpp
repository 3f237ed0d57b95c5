// Broken packages give a message naming the file and the part, and never a crash, a hang or a
// file written.
#include "HostTestSupport.h"
#include "HostileIdml.h"
#include "host/idml/IdmlError.h"

#include <fstream>
#include <optional>

using IdmlTestKit::DocumentDef;

namespace {

class BadInput : public HostTest::SessionTest<VLMTest::ListedFaces> {
protected:
    // Opening `path` must fail naming the file, `part` and `detail`, and write no file.
    void expectRefused(const std::string& path, const std::string& part, const std::string& detail,
                       const Galley::PackageLimits& limits = {}) {
        const long before = dir.entries();
        try {
            Galley::IdmlDocument::open(path, fonts(), limits);
            ADD_FAILURE() << path << " opened";
        } catch (const Galley::IdmlError& error) {
            EXPECT_EQ(error.file(), path);
            EXPECT_NE(std::string(error.what()).find(path), std::string::npos);
            EXPECT_EQ(error.part(), part) << error.what();
            EXPECT_NE(error.detail().find(detail), std::string::npos) << error.what();
        }
        EXPECT_EQ(dir.entries(), before);
    }
};

TEST_F(BadInput, ContainerThatIsNoZipOrIsCutShort) {
    const std::string whole = HostTest::writeDescribed(dir, "story\npara\nrun text=\"t\"\n");
    const std::string bytes = HostTest::readFile(whole);
    for (const std::string& content :
         {std::string("not a zip at all"), std::string(), bytes.substr(0, bytes.size() / 2)}) {
        std::ofstream(dir.file("bad.idml"), std::ios::binary) << content;
        expectRefused(dir.file("bad.idml"), "", "not a readable IDML package");
    }
}

TEST_F(BadInput, EachFaultNamesItsPart) {
    const std::string story = "Stories/Story_u1.xml", styles = "Resources/Styles.xml";
    const std::string malformed = "<?xml version=\"1.0\"?>\n<R><U></R>";
    std::string deep = "<?xml version=\"1.0\"?>\n";
    for (int i = 0; i < 100000; ++i)
        deep += "<a>";
    struct Case {
        std::string lines;                  // description lines before a story of one run
        std::string part;                   // the part the error must name
        std::optional<std::string> content; // replaces `part`; nullopt drops it, "" keeps it
        std::string detail;
        std::size_t maxPartBytes = Galley::PackageLimits{}.maxPartBytes;
    } cases[] = {
        {"", "designmap.xml", std::nullopt, "the package lacks this part"},
        {"", story, std::nullopt, "designmap.xml lists this story, but the package lacks it"},
        {"pstyle A based=C\npstyle B based=A\npstyle C based=B\n", styles, "", "BasedOn cycle"},
        {"cstyle Self based=Self\n", styles, "", "BasedOn cycle"},
        {"story\npara\nrun cstyle=Nowhere\n", story, "", "\"CharacterStyle/Nowhere\", which"},
        {"", story, deep, "malformed XML"},
        {"", story, std::string(4096, ' '), "too large", 1024},
        {"", "designmap.xml", malformed, "malformed XML at line 2"},
        {"", "Resources/Fonts.xml", malformed, "malformed XML at line 2"},
        {"", styles, malformed, "malformed XML at line 2"},
        {"", story, malformed, "malformed XML at line 2"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.part + ": " + c.detail);
        DocumentDef doc = IdmlTestKit::parseDescription(c.lines + "story\npara\nrun text=t\n");
        if (!c.content)
            doc.omittedParts.insert(c.part);
        else if (!c.content->empty())
            doc.replacedParts[c.part] = *c.content;
        IdmlTestKit::writeIdml(doc, dir.file("bad.idml"));
        expectRefused(dir.file("bad.idml"), c.part, c.detail, {.maxPartBytes = c.maxPartBytes});
    }
}

// Each attack is refused early, naming its part, or read within the limits. What each costs
// in memory and time is measured by bench/idml_hostile_bench.
TEST_F(BadInput, HostileDocumentsAreRefusedEarlyOrReadOnce) {
    for (const auto& hostile : IdmlTestKit::hostileCases()) {
        SCOPED_TRACE(hostile.name);
        const std::string path = dir.file(hostile.name + ".idml");
        hostile.write(path);
        if (hostile.detail.empty()) {
            auto document = Galley::IdmlDocument::open(path, fonts());
            EXPECT_EQ(document->stories().size(), 1u);
            EXPECT_FALSE(document->usage().missing().empty());
            continue;
        }
        expectRefused(path, hostile.part, hostile.detail);
    }
}

} // namespace
