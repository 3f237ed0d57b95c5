// Faces activated for an application go when every application that asked for them has
// left; a user's own activations stay.
#include "FontFixtures.h"

#include "fontmanager/AutoActivation.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/SqliteCatalog.h"
#include "fontmanager/TemporaryActivation.h"

#include <gtest/gtest.h>

#include <set>

namespace Vellumine {
namespace {

using namespace VellumineTest;
using namespace std::chrono_literals;
using Clock = TemporaryActivation::Clock;

class TemporaryActivationTest : public testing::Test {
protected:
    void SetUp() override {
        FaceReader reader;
        LibraryImporter(catalog, reader).add({dejaVuSans, dejaVuSerif, nimbusRomanType1});
    }

    // A font request from `application` for one face, as the server handles it.
    void request(const std::string& application, const std::string& postScriptName) {
        Request request{"fontRequest", application, "VLM4", "1.00", {}};
        request.fonts.push_back({"1", postScriptName, "", "", "", ""});
        activateAutomatically(catalog, activation, changes, request, application);
    }

    bool active(const std::string& postScriptName) {
        return catalog.facesByPostScriptName(postScriptName).at(0).active;
    }

    void leave(const std::string& application) {
        running.erase(application);
        temporary.applicationLeft(application, start);
    }

    std::set<std::string> active() {
        std::set<std::string> names;
        for (const auto& face : catalog.allFaces()) {
            if (face.active) {
                names.insert(face.postScriptName);
            }
        }
        return names;
    }

    PrivateFontconfig noSystemFonts;
    ScratchFolder scratch;
    SqliteCatalog catalog{scratch.path() / "library.db"};
    Activation activation{catalog, scratch.path() / "fonts"};
    int announced = 0;
    LibraryChanges changes{catalog, [this](const std::string&) { return ++announced, 0; }};
    std::set<std::string> running{"InDn", "XPRS"};
    TemporaryActivation temporary{catalog, activation, changes,
                                  [this](const std::string& app) { return running.contains(app); },
                                  3s};
    const Clock::time_point start = Clock::now();
};

TEST_F(TemporaryActivationTest, FacesGoAfterTheGracePeriodOnceEveryApplicationThatAskedLeft) {
    request("InDn", "DejaVuSans");
    request("InDn", "DejaVuSerif");
    request("XPRS", "DejaVuSerif"); // active already, for InDn: XPRS asks for it too
    ASSERT_TRUE(activation.activate(catalog.facesByPostScriptName("NimbusRoman-Regular")[0].id)
                    .succeeded()); // the user's
    const int before = announced;

    leave("InDn");
    EXPECT_EQ(temporary.nextDeadline(), start + 3s);
    EXPECT_TRUE(temporary.deactivateDue(start + 2s).empty()); // still in its grace period
    EXPECT_EQ(temporary.deactivateDue(start + 3s).size(), 1u);
    EXPECT_EQ(active(), (std::set<std::string>{"DejaVuSerif", "NimbusRoman-Regular"}));
    EXPECT_EQ(announced, before + 1);

    leave("XPRS");
    temporary.deactivateDue(start + 3s);
    EXPECT_EQ(active(), std::set<std::string>{"NimbusRoman-Regular"});
    EXPECT_FALSE(temporary.nextDeadline());
}

TEST_F(TemporaryActivationTest, ARestartedApplicationOrTheSettingOffKeepsTheFaces) {
    request("InDn", "DejaVuSans");
    leave("InDn");
    running.insert("InDn"); // back within the grace period
    temporary.deactivateDue(start + 5s);
    EXPECT_TRUE(active("DejaVuSans"));

    catalog.setAutoDeactivation(false);
    leave("InDn");
    temporary.deactivateDue(start + 5s);
    EXPECT_TRUE(active("DejaVuSans"));
}

TEST_F(TemporaryActivationTest, FacesOfApplicationsThatLeftWhileNoServerWatchedGoToo) {
    request("InDn", "DejaVuSans");
    request("ABCD", "DejaVuSerif"); // owns no name: not running from the start
    running.erase("InDn");
    temporary.reviewRequesters(start);
    EXPECT_EQ(temporary.deactivateDue(start + 3s).size(), 2u);
    EXPECT_TRUE(active().empty());

    // Activated again later for another application, a face forgets who asked for it before.
    request("XPRS", "DejaVuSans");
    leave("XPRS");
    running.insert("InDn");
    temporary.deactivateDue(start + 3s);
    EXPECT_FALSE(active("DejaVuSans"));
}

} // namespace
} // namespace Vellumine
