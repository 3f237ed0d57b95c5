// The main road between Galley and vellumine, as a user meets it: `galley --batch` in a
// private world (its own bus, XDG folders, fontconfig configuration with DejaVu and the URW
// Type 1 faces, and a vellumine library holding the TeX Gyre fonts, TeX Gyre Pagella Regular
// twice).
#include "IdmlBuilder.h"
#include "PrivateSession.h"

#include "host/idml/IdmlPackage.h"
#include "tests/support/GalleyProcess.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>

namespace {

namespace fs = std::filesystem;
const std::string texGyre = "/usr/share/texmf/fonts/opentype/public/tex-gyre";

// One private world: bus, XDG folders, fontconfig configuration and vellumine's library.
class World {
public:
    World() {
        if (!session.ok())
            return;
        const std::string root = session.root();
        fs::create_directories(session.dataHome() + "/fonts");
        fs::create_directories(root + "/extra");
        std::ofstream(root + "/fonts.conf")
            << "<?xml version=\"1.0\"?>\n<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir>"
               "<dir>/usr/share/fonts/type1/urw-base35</dir><dir>"
            << session.dataHome() << "/fonts</dir><cachedir>" << root
            << "/fc-cache</cachedir></fontconfig>\n";
        setenv("FONTCONFIG_FILE", (root + "/fonts.conf").c_str(), 1);
        fs::copy_file(texGyre + "/texgyrepagella-regular.otf",
                      root + "/extra/texgyrepagella-regular.otf");
        ready = vellumine({"add", texGyre, root + "/extra"}) == 0;
    }
    ~World() { unsetenv("FONTCONFIG_FILE"); }

    int vellumine(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), VELLUMINE_EXECUTABLE);
        VLMTest::ProgramRun run(arguments, session.root() + "/vellumine" + std::to_string(runs++));
        return run.wait();
    }
    void installLauncher() { vellumine({"install-launcher", "--data-home", session.dataHome()}); }
    // Starts a program that owns the font manager's name, and waits until it does.
    bool serve(const std::vector<std::string>& program) {
        session.spawn(program);
        return VlmTest::waitFor(
            [&] { return statusOfVellumine().find("is owned") != std::string::npos; });
    }
    std::unique_ptr<VLMTest::ProgramRun>
    galley(const std::string& document, std::vector<std::string> actions, int timeout = 10) {
        std::vector<std::string> arguments = {GALLEY_EXECUTABLE, "--batch", document, "--timeout",
                                              std::to_string(timeout)};
        arguments.insert(arguments.end(), actions.begin(), actions.end());
        return std::make_unique<VLMTest::ProgramRun>(arguments, session.root() + "/galley" +
                                                                    std::to_string(runs++));
    }
    std::string statusOfVellumine() {
        VLMTest::ProgramRun run({VELLUMINE_EXECUTABLE, "status"},
                                session.root() + "/status" + std::to_string(runs++));
        run.wait();
        return run.output();
    }
    // A document written here: `fonts` are "Family|Style|PostScriptName" entries, one run each.
    std::string document(const std::string& name, const std::vector<std::string>& fonts,
                         const std::string& dom = "8.0") {
        std::string description = "dom " + dom + "\n";
        std::string story = "story\npara\n";
        for (const auto& font : fonts) {
            const auto bar = font.find('|'), bar2 = font.rfind('|');
            const std::string family = font.substr(0, bar),
                              style = font.substr(bar + 1, bar2 - bar - 1);
            description += "font \"" + family + "\" \"" + style + "\" " + font.substr(bar2 + 1) +
                           " OpenTypeCFF\n";
            // An exported face without a PostScript name comes as tagged text, as exports of
            // tagged layouts write it.
            const bool exported = font.substr(bar2 + 1) == "-";
            story += "run font=\"" + family + "\" style=\"" + style + "\"" +
                     (exported ? " wrap=xml" : "") + " text=\"Set in " + family + ".\\n\"\n";
        }
        const std::string path = session.root() + "/" + name + ".idml";
        IdmlTestKit::writeIdml(IdmlTestKit::parseDescription(description + story), path);
        return path;
    }
    static std::string bytesOf(const std::string& path) {
        std::stringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }

    VlmTest::PrivateSession session;
    bool ready = false;
    int runs = 0;
};

class Road : public ::testing::Test, public World {
protected:
    void SetUp() override { ASSERT_TRUE(ready) << session.error(); }
};

const std::string heros = "TeX Gyre Heros|Bold|TeXGyreHeros-Bold";
const std::string pagella = "TeX Gyre Pagella|Regular|TeXGyrePagella-Regular";
const std::string imaginary = "Imaginary Serif|Regular|ImaginarySerif-Regular";
const std::string dejaVu = "DejaVu Sans|Book|DejaVuSans";
// As exports name a font that was missing where they were made: no PostScript name.
const std::string exportedImaginary = "Imaginary Serif|Regular|-";

TEST(RoadCases, EndsAsTheFontManagersAnswerSays) {
    struct Case {
        std::string name;
        std::vector<std::string> fonts;
        std::vector<std::string> actions;
        std::function<void(World&)> arrange;
        int exit;
        std::vector<std::string> shown; // in standard output, in this order; none: no dialog
        std::string alert;              // the alert on standard error; empty: none
        std::string dom = "8.0";
    };
    const auto launcher = [](World& w) { w.installLauncher(); };
    const std::vector<Case> cases = {
        {"nothing missing", {dejaVu}, {}, launcher, 0, {}, ""},
        {"everything supplied",
         {heros, dejaVu},
         {},
         launcher,
         0,
         {"== Activating Fonts ==", "== Activating Fonts (closed) =="},
         ""},
        {"a choice to make",
         {pagella},
         {},
         launcher,
         1,
         {"== Missing Fonts ==", "Several matches", "(cancelled)"},
         ""},
        {"the user chooses a candidate",
         {pagella},
         {"select", "TeXGyrePagella-Regular/2", "press", "Activate"},
         launcher,
         0,
         {"== Missing Fonts ==", "> press Activate", "== Missing Fonts (closed) =="},
         ""},
        {"not in the library",
         {imaginary},
         {},
         launcher,
         1,
         {"== Missing Fonts ==", "Not in library"},
         ""},
        {"no font manager installed",
         {heros},
         {},
         [](World&) {},
         1,
         {},
         "Vellumine could not be found"},
        {"an old protocol",
         {heros},
         {},
         [](World& w) {
             ASSERT_TRUE(w.serve({VELLUMINE_EXECUTABLE, "serve", "--protocol-version", "1.5"}));
         },
         1,
         {},
         ""},
        {"a converted document",
         {heros},
         {},
         launcher,
         1,
         {},
         "converted from an older version",
         "6.0"},
        {"a reply that is no XML",
         {heros},
         {},
         [](World& w) {
             ASSERT_TRUE(
                 w.serve({VLM_TEST_BUS_PEER, "org.vellumine.Vellumine", "--class", "VLMQ"}));
         },
         1,
         {},
         "parse"},
    };
    for (const auto& c : cases) {
        World world;
        ASSERT_TRUE(world.ready) << world.session.error();
        c.arrange(world);
        const std::string path = world.document("doc", c.fonts, c.dom);
        auto run = world.galley(path, c.actions);
        EXPECT_EQ(run->wait(), c.exit) << c.name << "\n" << run->output() << run->errors();
        const std::string out = run->output(), err = run->errors();
        std::size_t at = 0;
        for (const auto& text : c.shown) {
            at = out.find(text, at);
            EXPECT_NE(at, std::string::npos)
                << c.name << ": \"" << text << "\" not shown in order:\n"
                << out;
        }
        if (c.shown.empty()) {
            EXPECT_EQ(out.find("=="), std::string::npos) << c.name << ": no dialog expected:\n"
                                                         << out;
        }
        // Alerts are the lines that start with the document's name.
        const auto alert = err.rfind("\ndoc.idml: ", err.size()) != std::string::npos ||
                           err.rfind("doc.idml: ", 0) == 0;
        EXPECT_EQ(alert, !c.alert.empty()) << c.name << ":\n" << err;
        if (!c.alert.empty()) {
            EXPECT_NE(err.find(c.alert), std::string::npos) << c.name << ":\n" << err;
        }
    }
}

TEST_F(Road, AFontManagerThatDiesLeavesTheProgressDialogToTheTimeOutAndTheDocumentUntouched) {
    installLauncher();
    // Galley's fontconfig leaves out vellumine's folder: the progress dialog waits for a font
    // that vellumine activates but Galley never sees arrive.
    std::ofstream(session.root() + "/fonts.conf")
        << "<?xml version=\"1.0\"?>\n<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir><cachedir>"
        << session.root() << "/fc-cache</cachedir></fontconfig>\n";
    const pid_t server = session.spawn({VELLUMINE_EXECUTABLE, "serve"});
    ASSERT_TRUE(
        VlmTest::waitFor([&] { return statusOfVellumine().find("owned") != std::string::npos; }));
    const std::string path = document("brochure", {heros, dejaVu});
    const std::string before = bytesOf(path);
    auto run = galley(path, {}, 3);
    ASSERT_TRUE(run->waitForOutput("== Activating Fonts =="));
    kill(server, SIGKILL);
    EXPECT_EQ(run->wait(), 1) << run->errors();
    EXPECT_NE(run->errors().find("time-out after 3 s"), std::string::npos) << run->errors();
    EXPECT_EQ(bytesOf(path), before);
}

// A font manager that owns its name but never answers (stopped, say): the exchange gives
// up within 15 s whatever the bus's own time-out, so the run ends within its time-out and
// that, and the user hears once why.
TEST_F(Road, AFontManagerThatNeverAnswersHoldsGalleyNoLongerThanItsBound) {
    ASSERT_TRUE(serve({VLM_TEST_BUS_PEER, "org.vellumine.Vellumine", "--silent"}));
    const int timeout = 5;
    auto run = galley(document("doc", {heros}), {}, timeout);
    EXPECT_EQ(run->wait(std::chrono::seconds(timeout + 15)), 1) << run->errors();
    const std::string err = run->errors();
    const std::string notice = "galley: the font manager (org.vellumine.Vellumine) does not answer";
    const auto told = err.find(notice);
    EXPECT_NE(told, std::string::npos) << err;
    EXPECT_EQ(err.find(notice, told + 1), std::string::npos) << "told once:\n" << err;
}

TEST_F(Road, ShowAndBuyReachTheFontManager) {
    installLauncher();
    auto run = galley(document("choice", {pagella}), {"select", "TeXGyrePagella-Regular", "press",
                                                      "Show in Vellumine", "press", "Buy…"});
    EXPECT_EQ(run->wait(), 1) << run->errors();
    const std::string status = statusOfVellumine();
    const auto shown = status.find("asked to show"), wished = status.find("wish list");
    ASSERT_NE(shown, std::string::npos) << status;
    EXPECT_NE(status.find("TeXGyrePagella-Regular", shown), std::string::npos) << status;
    EXPECT_NE(status.find("TeXGyrePagella-Regular", wished), std::string::npos) << status;
}

// The face has no PostScript name and its text is tagged: the plug-in still finds it by the
// name Galley gives it, and a button is pressed by its caption as typed, without "…".
TEST_F(Road, AReplacementIsSavedAsANewPackageAndTheOriginalStaysAsItWas) {
    installLauncher();
    const std::string original = document("imaginary", {exportedImaginary, dejaVu});
    const std::string before = bytesOf(original);
    const std::string saved = session.root() + "/replaced.idml";
    auto run =
        galley(original, {"select", "ImaginarySerif-Regular", "press", "replace", "pick",
                          "DejaVu Sans Bold", "press", "OK", "press", "OK", "save-as", saved});
    EXPECT_EQ(run->wait(), 0) << run->output() << run->errors();
    EXPECT_EQ(bytesOf(original), before);

    VLMTest::ProgramRun report({GALLEY_EXECUTABLE, "fonts", saved}, session.root() + "/report");
    EXPECT_EQ(report.wait(), 0) << report.output();
    EXPECT_EQ(report.output().find("Imaginary"), std::string::npos) << report.output();
    const auto a = Galley::IdmlPackage::read(original), b = Galley::IdmlPackage::read(saved);
    for (const auto& part : a.partNames()) {
        const bool changes = part.rfind("Stories/", 0) == 0 || part == "Resources/Fonts.xml";
        if (!changes) {
            EXPECT_EQ(a.inflate(part), b.inflate(part)) << part;
        }
    }
}

} // namespace
