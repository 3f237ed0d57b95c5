#include "platform/linux/notify.h"
#include "platform/linux/FileNotifications.h"
#include "platform/linux/NotifyFolder.h"
#include "tests/support/GalleyProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace NotifyFolder = Platform::Linux::NotifyFolder;
namespace fs = std::filesystem;

namespace {

// Points XDG_RUNTIME_DIR at a fresh temporary folder for the test.
class NotifyTest : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/vlm-notify-test-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        runtime = pattern;
        folder = runtime + "/notify";
        setenv("XDG_RUNTIME_DIR", pattern, 1);
    }
    void TearDown() override { fs::remove_all(runtime); }

    int checkOnce(int token) {
        int changed = -1;
        EXPECT_EQ(notify_check(token, &changed), NOTIFY_STATUS_OK);
        return changed;
    }

    std::uint64_t counterIn(const std::string& name) {
        std::uint64_t counter = 0;
        std::ifstream(folder + "/" + name).read(reinterpret_cast<char*>(&counter), 8);
        return counter;
    }

    std::string runtime, folder;
};

TEST(NotifyFileName, EncodesEverythingOutsideThePortableSet) {
    for (auto [name, file] : {std::pair<std::string, std::string>{"org.v.Changed", "org.v.Changed"},
                              {"a b/c%_-", "a%20b%2Fc%25_-"},
                              {"\xC3\xA9", "%C3%A9"},
                              {".", "%2E"},
                              {"..", "%2E%2E"},
                              {"...", "..."},
                              {std::string(255, 'x'), std::string(255, 'x')},
                              {std::string(86, '/'), ""}}) // 258 bytes once encoded
        EXPECT_EQ(NotifyFolder::fileName(name), file) << name;
}

TEST_F(NotifyTest, FolderIsCreatedPrivateUsedOnlyWhilePrivateAndDefaultsToTmp) {
    EXPECT_EQ(notify_post("x"), NOTIFY_STATUS_OK);
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    for (mode_t unsafe : {0770, 0707}) {
        chmod(folder.c_str(), unsafe);
        EXPECT_EQ(notify_post("y"), NOTIFY_STATUS_INVALID_FOLDER) << std::oct << unsafe;
        EXPECT_FALSE(fs::exists(folder + "/y"));
    }
    // A link to a private folder elsewhere is refused as well: it is not this folder.
    fs::rename(folder, runtime + "/elsewhere");
    chmod((runtime + "/elsewhere").c_str(), 0700);
    ASSERT_EQ(symlink((runtime + "/elsewhere").c_str(), folder.c_str()), 0);
    EXPECT_EQ(notify_post("y"), NOTIFY_STATUS_INVALID_FOLDER);
    EXPECT_FALSE(fs::exists(runtime + "/elsewhere/y"));

    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(NotifyFolder::path(), "/tmp/notify-" + std::to_string(geteuid()));
    setenv("XDG_RUNTIME_DIR", "", 1);
    EXPECT_EQ(NotifyFolder::path(), "/tmp/notify-" + std::to_string(geteuid()));
}

TEST_F(NotifyTest, FolderOfAnotherUserIsRefused) {
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    if (chown(folder.c_str(), geteuid() + 1, static_cast<gid_t>(-1)) != 0)
        GTEST_SKIP() << "giving the folder away needs privileges";
    std::string why;
    EXPECT_EQ(NotifyFolder::open(folder, why), -1);
    EXPECT_NE(why.find("another user"), std::string::npos);
    EXPECT_EQ(notify_post("x"), NOTIFY_STATUS_INVALID_FOLDER);
}

TEST_F(NotifyTest, ChecksReportPostingsSinceTheLastCheckAndBadArgumentsAreRefused) {
    // A counter another writer left (one native 64-bit word) is continued.
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    std::uint64_t counter = 41;
    std::ofstream(folder + "/shared%20name").write(reinterpret_cast<char*>(&counter), 8);
    int token = 0, second = 0;
    ASSERT_EQ(notify_register_check("shared name", &token), NOTIFY_STATUS_OK);
    ASSERT_EQ(notify_register_check("shared name", &second), NOTIFY_STATUS_OK);
    EXPECT_NE(checkOnce(token), 0) << "the first check always reports";
    EXPECT_EQ(checkOnce(token), 0);
    checkOnce(second);

    ASSERT_EQ(notify_post("shared name"), NOTIFY_STATUS_OK);
    EXPECT_NE(checkOnce(token), 0);
    EXPECT_NE(checkOnce(second), 0) << "every registration sees the posting";
    EXPECT_EQ(checkOnce(token), 0);
    for (int i = 0; i < 3; ++i)
        notify_post("shared name");
    EXPECT_NE(checkOnce(token), 0) << "three postings between two checks report once";
    EXPECT_EQ(checkOnce(token), 0);
    ASSERT_EQ(notify_post("another name"), NOTIFY_STATUS_OK);
    EXPECT_EQ(checkOnce(token), 0) << "names are independent";
    std::ifstream(folder + "/shared%20name").read(reinterpret_cast<char*>(&counter), 8);
    EXPECT_EQ(counter, 45u);
    EXPECT_EQ(fs::file_size(folder + "/shared%20name"), 8u);

    EXPECT_EQ(notify_cancel(token), NOTIFY_STATUS_OK);
    int changed = 0;
    EXPECT_EQ(notify_check(token, &changed), NOTIFY_STATUS_INVALID_TOKEN);
    EXPECT_EQ(notify_cancel(token), NOTIFY_STATUS_INVALID_TOKEN);
    notify_post("shared name");
    EXPECT_NE(checkOnce(second), 0) << "the other registration still works";

    EXPECT_EQ(notify_post(nullptr), NOTIFY_STATUS_INVALID_NAME);
    EXPECT_EQ(notify_post(""), NOTIFY_STATUS_INVALID_NAME);
    EXPECT_EQ(notify_register_check(nullptr, &token), NOTIFY_STATUS_INVALID_NAME);
    EXPECT_EQ(notify_register_check("n", nullptr), NOTIFY_STATUS_INVALID_ARGUMENT);
    EXPECT_EQ(Platform::Linux::FileNotifications().post(std::string("a\0b", 3)),
              NOTIFY_STATUS_INVALID_NAME);
    EXPECT_FALSE(fs::exists(folder + "/a")) << "an embedded NUL must not shorten the name";
}

// Any process of the user may write a counter file. Whatever it leaves there, a reader
// that registered before goes on (a shrunk file once killed it with SIGBUS) and sees the
// damage once as a change, and the next posting continues from what is left.
TEST_F(NotifyTest, CounterFilesOfAnySizeAreReadAndPostedWithoutFault) {
    const struct {
        std::string damage;
        std::function<void(const std::string& file)> apply;
        int seenAsChange;
        std::uint64_t afterPosting;
    } cases[] = {
        {"truncated to nothing", [](const std::string& f) { ASSERT_EQ(truncate(f.c_str(), 0), 0); },
         1, 1},
        {"three stray bytes", [](const std::string& f) { std::ofstream(f) << "abc"; }, 1, 1},
        {"grown to a page", [](const std::string& f) { ASSERT_EQ(truncate(f.c_str(), 4096), 0); },
         0, 3},
    };
    for (const auto& c : cases) {
        const std::string name = "counter " + c.damage;
        const std::string file = folder + "/" + NotifyFolder::fileName(name);
        notify_post(name.c_str());
        notify_post(name.c_str());
        int token = 0;
        ASSERT_EQ(notify_register_check(name.c_str(), &token), NOTIFY_STATUS_OK);
        checkOnce(token);
        c.apply(file);
        EXPECT_EQ(checkOnce(token), c.seenAsChange) << c.damage;
        EXPECT_EQ(checkOnce(token), 0) << c.damage << ": reported once";
        EXPECT_EQ(notify_post(name.c_str()), NOTIFY_STATUS_OK) << c.damage;
        EXPECT_EQ(checkOnce(token), 1) << c.damage;
        EXPECT_EQ(counterIn(NotifyFolder::fileName(name)), c.afterPosting) << c.damage;
        notify_cancel(token);
    }
}

TEST_F(NotifyTest, ANameWhoseFileIsNoCounterFileIsRefusedForWhatItIs) {
    ASSERT_EQ(notify_post("plain"), NOTIFY_STATUS_OK);
    const struct {
        std::string kind;
        std::function<int(const std::string& file)> make;
    } cases[] = {
        {"a FIFO", [](const std::string& f) { return mkfifo(f.c_str(), 0600); }},
        {"a folder", [](const std::string& f) { return mkdir(f.c_str(), 0700); }},
        {"a symbolic link", [&](const std::string& f) { return symlink("plain", f.c_str()); }},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(c.make(folder + "/odd"), 0) << c.kind;
        int token = 0;
        EXPECT_EQ(notify_post("odd"), NOTIFY_STATUS_NOT_A_FILE) << c.kind;
        EXPECT_EQ(notify_register_check("odd", &token), NOTIFY_STATUS_NOT_A_FILE) << c.kind;
        EXPECT_EQ(NotifyFolder::describeFailure("odd", NOTIFY_STATUS_NOT_A_FILE),
                  folder + "/odd is " + c.kind + ", not a counter file; remove it to use \"odd\"");
        fs::remove(folder + "/odd");
    }
    EXPECT_EQ(counterIn("plain"), 1u) << "the link's target was left alone";
}

// notifyutil as the shell runs it: a waiting one survives its counter being truncated under
// it again and again, and a FIFO in the counter's place is named, without hanging.
TEST_F(NotifyTest, NotifyutilSurvivesATruncatedCounterAndNamesAFifo) {
    ASSERT_EQ(notify_post("n"), NOTIFY_STATUS_OK);
    VLMTest::ProgramRun waiter({NOTIFYUTIL, "-w", "n", "-t", "30"}, runtime + "/wait");
    int exit = -1;
    for (int round = 0; round < 20 && exit < 0; ++round) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50)); // it registers meanwhile
        ASSERT_EQ(truncate((folder + "/n").c_str(), 0), 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        notify_post("n");
        exit = waiter.wait(std::chrono::seconds(1));
    }
    EXPECT_EQ(exit, 0) << waiter.errors();
    EXPECT_EQ(waiter.output(), "n\n");

    fs::remove(folder + "/n");
    ASSERT_EQ(mkfifo((folder + "/n").c_str(), 0600), 0);
    for (const char* mode : {"-p", "-w"}) {
        VLMTest::ProgramRun run({NOTIFYUTIL, mode, "n", "-t", "5"}, runtime + "/fifo");
        EXPECT_EQ(run.wait(std::chrono::seconds(20)), 1) << mode;
        EXPECT_THAT(run.errors(), testing::HasSubstr("/n is a FIFO, not a counter file")) << mode;
    }
}

} // namespace
