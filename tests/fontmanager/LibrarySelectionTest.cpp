// Which library a vellumine works on, and the SHA-256 that addresses a shared library's files.
#include "FontFixtures.h"

#include "fontmanager/LibrarySelection.h"
#include "fontmanager/Sha256.h"

#include <gtest/gtest.h>

#include <optional>

namespace Vellumine {
namespace {

using namespace VellumineTest;

TEST(LibrarySelection, TheEnvironmentThenTheOptionThenTheConfigurationThenTheUsersOwnFile) {
    ScratchFolder scratch;
    const auto config =
        scratch.write("vellumine.conf", "# the studio's library\n\nwindow = wide\n"
                                        "  library = postgresql:///fonts?host=/run/postgresql  \n");
    const auto none = scratch.path() / "absent.conf";
    const std::filesystem::path own = "/home/ann/.local/share/vellumine/library.db";
    struct Case {
        std::optional<std::string> environment;
        std::optional<std::string> option;
        std::filesystem::path configFile;
        std::string url;
        std::string source;
    };
    for (const Case& c : {
             Case{"sqlite:/env.db", "sqlite:/option.db", config, "sqlite:/env.db",
                  "VELLUMINE_LIBRARY"},
             Case{"", "sqlite:/option.db", config, "sqlite:/option.db", "--library"},
             Case{std::nullopt, std::nullopt, config, "postgresql:///fonts?host=/run/postgresql",
                  config.string()},
             Case{std::nullopt, std::nullopt, none, "sqlite:" + own.string(), "default"},
         }) {
        const LibraryLocation chosen = selectLibrary({c.environment, c.option, c.configFile, own});
        EXPECT_EQ(chosen.url, c.url);
        EXPECT_EQ(chosen.source, c.source);
    }
}

TEST(LibrarySelection, AURLThatIsNeitherKindNamesWhereItCameFromAndHidesItsPassword) {
    ScratchFolder scratch;
    const auto config = scratch.write("vellumine.conf", "library = mysql://ann:secret@db/fonts\n");
    try {
        selectLibrary({std::nullopt, std::nullopt, config, "/own.db"});
        FAIL() << "accepted a URL of neither kind";
    } catch (const std::invalid_argument& error) {
        const std::string message = error.what();
        EXPECT_NE(message.find(config.string()), std::string::npos) << message;
        EXPECT_EQ(message.find("secret"), std::string::npos) << message;
    }
    EXPECT_EQ(
        LibraryLocation::parse("postgres://ann:secret@db/fonts?password=x&sslmode=require", "test")
            .shown(),
        "postgres://ann:***@db/fonts?password=***&sslmode=require");
}

TEST(Sha256, MatchesTheStandardsVectorsAcrossBlockBoundaries) {
    const std::pair<std::string, std::string> vectors[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const auto& [message, digest] : vectors) {
        EXPECT_EQ(Sha256::of(message), digest) << message.size() << " bytes";
        Sha256 piecewise; // fed in uneven pieces, as a file is read
        for (std::size_t at = 0; at < message.size(); at += 63) {
            piecewise.update(std::string_view(message).substr(at, 63));
        }
        EXPECT_EQ(piecewise.hexDigest(), digest) << message.size() << " bytes in pieces";
    }
}

TEST(Sha256, DigestsAFileAsItsBytesAndSaysWhenItCannotReadIt) {
    ScratchFolder scratch;
    EXPECT_EQ(Sha256::ofFile(dejaVuSans), Sha256::of(readFile(dejaVuSans)));
    EXPECT_FALSE(Sha256::ofFile(scratch.path() / "missing.ttf"));
    EXPECT_FALSE(Sha256::ofFile(scratch.path())); // a folder
}

} // namespace
} // namespace Vellumine
