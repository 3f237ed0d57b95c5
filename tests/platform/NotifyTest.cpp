#include "platform/linux/notify.h"
#include "platform/linux/FileNotifications.h"
#include "platform/linux/NotifyFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace NotifyFolder = Platform::Linux::NotifyFolder;
namespace fs = std::filesystem;

namespace {

// Points XDG_RUNTIME_DIR at a fresh temporary folder for the duration of a test.
class NotifyTest : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/vlm-notify-test-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        runtime = pattern;
        const char* old = std::getenv("XDG_RUNTIME_DIR");
        hadRuntime = old != nullptr;
        oldRuntime = old ? old : "";
        setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
        folder = runtime + "/notify";
    }
    void TearDown() override {
        if (hadRuntime) {
            setenv("XDG_RUNTIME_DIR", oldRuntime.c_str(), 1);
        } else {
            unsetenv("XDG_RUNTIME_DIR");
        }
        std::error_code ec;
        fs::remove_all(runtime, ec);
    }

    std::uint64_t counterOnDisk(const std::string& fileName) {
        std::uint64_t value = 0;
        std::ifstream(folder + "/" + fileName, std::ios::binary)
            .read(reinterpret_cast<char*>(&value), sizeof value);
        return value;
    }

    int checkOnce(int token) {
        int changed = -1;
        EXPECT_EQ(notify_check(token, &changed), NOTIFY_STATUS_OK);
        return changed;
    }

    std::string runtime;
    std::string folder;
    bool hadRuntime = false;
    std::string oldRuntime;
};

TEST(NotifyFileName, EncodesEverythingOutsideThePortableSet) {
    EXPECT_EQ(NotifyFolder::fileName("org.vellumine.Vellumine.FontLibraryChanged"),
              "org.vellumine.Vellumine.FontLibraryChanged");
    EXPECT_EQ(NotifyFolder::fileName("a b/c%_-"), "a%20b%2Fc%25_-");
    EXPECT_EQ(NotifyFolder::fileName("\xC3\xA9"), "%C3%A9");
    EXPECT_EQ(NotifyFolder::fileName("."), "%2E");
    EXPECT_EQ(NotifyFolder::fileName(".."), "%2E%2E");
    EXPECT_EQ(NotifyFolder::fileName("..."), "...");
    EXPECT_EQ(NotifyFolder::fileName(""), "");
    EXPECT_EQ(NotifyFolder::fileName(std::string(255, 'x')), std::string(255, 'x'));
    EXPECT_EQ(NotifyFolder::fileName(std::string(86, '/')), "") << "258 bytes once encoded";
}

TEST_F(NotifyTest, FolderIsCreatedPrivateOrDefaultsToTmp) {
    EXPECT_EQ(notify_post("x"), NOTIFY_STATUS_OK);
    struct stat info {};
    ASSERT_EQ(stat(folder.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);

    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(NotifyFolder::path(), "/tmp/notify-" + std::to_string(geteuid()));
    setenv("XDG_RUNTIME_DIR", "", 1);
    EXPECT_EQ(NotifyFolder::path(), "/tmp/notify-" + std::to_string(geteuid()));
}

TEST_F(NotifyTest, UnsafeFoldersAreRefusedAndLeftAlone) {
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    int token = 0;
    for (mode_t unsafe : {0770, 0707, 0722}) {
        chmod(folder.c_str(), unsafe);
        EXPECT_EQ(notify_post("x"), NOTIFY_STATUS_INVALID_FOLDER) << std::oct << unsafe;
        EXPECT_EQ(notify_register_check("x", &token), NOTIFY_STATUS_INVALID_FOLDER);
        EXPECT_FALSE(fs::exists(folder + "/x"));
    }
    rmdir(folder.c_str());

    // A link to a private folder elsewhere is refused as well: it is not this folder.
    std::string elsewhere = runtime + "/elsewhere";
    ASSERT_EQ(mkdir(elsewhere.c_str(), 0700), 0);
    ASSERT_EQ(symlink(elsewhere.c_str(), folder.c_str()), 0);
    EXPECT_EQ(notify_post("x"), NOTIFY_STATUS_INVALID_FOLDER);
    EXPECT_FALSE(fs::exists(elsewhere + "/x"));
    unlink(folder.c_str());

    std::ofstream(folder) << "a file";
    std::string why;
    EXPECT_EQ(NotifyFolder::open(folder, why), -1);
    EXPECT_NE(why.find("not a folder"), std::string::npos);
}

TEST_F(NotifyTest, FolderOfAnotherUserIsRefused) {
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    if (chown(folder.c_str(), geteuid() + 1, static_cast<gid_t>(-1)) != 0) {
        GTEST_SKIP() << "giving the folder away needs privileges";
    }
    std::string why;
    EXPECT_EQ(NotifyFolder::open(folder, why), -1);
    EXPECT_NE(why.find("another user"), std::string::npos);
    EXPECT_EQ(notify_post("x"), NOTIFY_STATUS_INVALID_FOLDER);
}

TEST_F(NotifyTest, ChecksReportPostingsSinceTheLastCheck) {
    int token = 0;
    ASSERT_EQ(notify_register_check("org.vellumine.Vellumine.FontLibraryChanged", &token),
              NOTIFY_STATUS_OK);
    EXPECT_NE(checkOnce(token), 0) << "the first check always reports";
    EXPECT_EQ(checkOnce(token), 0);

    ASSERT_EQ(notify_post("org.vellumine.Vellumine.FontLibraryChanged"), NOTIFY_STATUS_OK);
    EXPECT_NE(checkOnce(token), 0);
    EXPECT_EQ(checkOnce(token), 0);

    for (int i = 0; i < 3; ++i) {
        notify_post("org.vellumine.Vellumine.FontLibraryChanged");
    }
    EXPECT_NE(checkOnce(token), 0) << "three postings between two checks report once";
    EXPECT_EQ(checkOnce(token), 0);
    EXPECT_EQ(counterOnDisk("org.vellumine.Vellumine.FontLibraryChanged"), 4u);

    ASSERT_EQ(notify_post("another name"), NOTIFY_STATUS_OK);
    EXPECT_EQ(checkOnce(token), 0) << "names are independent";

    EXPECT_EQ(notify_cancel(token), NOTIFY_STATUS_OK);
    int changed = 0;
    EXPECT_EQ(notify_check(token, &changed), NOTIFY_STATUS_INVALID_TOKEN);
    EXPECT_EQ(notify_cancel(token), NOTIFY_STATUS_INVALID_TOKEN);
}

TEST_F(NotifyTest, RegistrationsOfOneNameAreIndependent) {
    int first = 0;
    int second = 0;
    ASSERT_EQ(notify_register_check("n", &first), NOTIFY_STATUS_OK);
    ASSERT_EQ(notify_register_check("n", &second), NOTIFY_STATUS_OK);
    EXPECT_NE(first, second);
    checkOnce(first);
    checkOnce(second);
    notify_post("n");
    EXPECT_NE(checkOnce(first), 0);
    EXPECT_NE(checkOnce(second), 0);
    notify_cancel(first);
    notify_post("n");
    EXPECT_NE(checkOnce(second), 0);
    notify_cancel(second);
}

TEST_F(NotifyTest, CounterFilesOfOtherWritersAreContinued) {
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    std::uint64_t existing = 41;
    std::ofstream(folder + "/shared%20name", std::ios::binary)
        .write(reinterpret_cast<const char*>(&existing), sizeof existing);
    ASSERT_EQ(notify_post("shared name"), NOTIFY_STATUS_OK);
    EXPECT_EQ(counterOnDisk("shared%20name"), 42u);
    EXPECT_EQ(fs::file_size(folder + "/shared%20name"), sizeof(std::uint64_t));
}

TEST_F(NotifyTest, BadArgumentsGiveErrorStatuses) {
    int token = 0;
    EXPECT_EQ(notify_post(nullptr), NOTIFY_STATUS_INVALID_NAME);
    EXPECT_EQ(notify_post(""), NOTIFY_STATUS_INVALID_NAME);
    EXPECT_EQ(notify_register_check(nullptr, &token), NOTIFY_STATUS_INVALID_NAME);
    EXPECT_EQ(notify_register_check("n", nullptr), NOTIFY_STATUS_INVALID_ARGUMENT);
    EXPECT_EQ(notify_check(-7, &token), NOTIFY_STATUS_INVALID_TOKEN);
    Platform::Linux::FileNotifications notifications;
    EXPECT_EQ(notifications.post(std::string("a\0b", 3)), NOTIFY_STATUS_INVALID_NAME);
    EXPECT_FALSE(fs::exists(folder + "/a")) << "an embedded NUL must not shorten the name";
}

} // namespace
