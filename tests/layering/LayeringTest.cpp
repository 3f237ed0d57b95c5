// The layers of the source tree, read from its #include lines: the plug-in and the SDK stay
// free of the toolkits and of the host, the link reaches the platform only through its
// interfaces, the plug-in's stack points down, and no two folders include each other.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Include {
    std::string file;   // relative to the source root
    std::string target; // as written between the quotes or angle brackets
    bool quoted = false;
};

const std::vector<std::string> productFolders = {"sdk",      "foundation", "platform", "link",
                                                 "document", "resources",  "ui",       "plugin",
                                                 "host",     "fontmanager"};
const std::vector<std::string> pluginFolders = {"foundation", "link", "document",
                                                "resources",  "ui",   "plugin"};

std::vector<Include> readIncludes() {
    static const std::regex line(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])");
    std::vector<Include> found;
    for (const std::string& folder : productFolders) {
        for (const auto& entry :
             fs::recursive_directory_iterator(fs::path(VLM_SOURCE_DIR) / folder)) {
            const std::string extension = entry.path().extension().string();
            if (!entry.is_regular_file() || (extension != ".cpp" && extension != ".h"))
                continue;
            std::ifstream in(entry.path());
            const std::string file = fs::relative(entry.path(), VLM_SOURCE_DIR).string();
            std::smatch match;
            for (std::string text; std::getline(in, text);)
                if (std::regex_search(text, match, line))
                    found.push_back({file, match[2], match[1] == "\""});
        }
    }
    return found;
}

const std::vector<Include>& includes() {
    static const std::vector<Include> all = readIncludes();
    return all;
}

bool inFolder(const std::string& path, const std::string& folder) {
    return path.starts_with(folder + "/");
}

bool inAny(const std::string& path, const std::vector<std::string>& folders) {
    for (const std::string& folder : folders)
        if (inFolder(path, folder))
            return true;
    return false;
}

// Every include of a file in `from` whose target satisfies `forbidden`, as "file: target".
std::vector<std::string> offenders(const std::vector<std::string>& from,
                                   const std::function<bool(const Include&)>& forbidden) {
    std::vector<std::string> found;
    for (const Include& include : includes())
        if (inAny(include.file, from) && forbidden(include))
            found.push_back(include.file + ": " + include.target);
    return found;
}

TEST(Layering, TheTreeIsReadAtAll) {
    EXPECT_GT(includes().size(), 500u);
}

// What the plug-in may not see: the toolkits and libraries of its host and font manager.
TEST(Layering, PluginAndSdkIncludeNoToolkitNorHostHeaders) {
    static const std::regex toolkit(
        R"(^(Q[A-Za-z]*|Qt[A-Za-z]*/.*|fontconfig/.*|systemd/.*|sqlite3\.h|ft2build\.h|freetype/.*|zip\.h|zipconf\.h|libpq-fe\.h)$)");
    std::vector<std::string> from = pluginFolders;
    from.push_back("sdk");
    EXPECT_EQ(offenders(from,
                        [](const Include& include) {
                            return (!include.quoted && std::regex_match(include.target, toolkit)) ||
                                   inFolder(include.target, "host") ||
                                   inFolder(include.target, "platform/linux") ||
                                   inFolder(include.target, "fontmanager");
                        }),
              std::vector<std::string>{});
}

// Only the link speaks to the platform, and only through its interface headers.
TEST(Layering, OnlyTheLinkReachesThePlatformAndOnlyThroughItsInterfaces) {
    std::vector<std::string> others = {"sdk",       "foundation", "document",
                                       "resources", "ui",         "plugin"};
    EXPECT_EQ(offenders(others,
                        [](const Include& include) {
                            return include.quoted && inFolder(include.target, "platform");
                        }),
              std::vector<std::string>{});
    EXPECT_EQ(offenders({"link"},
                        [](const Include& include) {
                            return include.quoted && inFolder(include.target, "platform") &&
                                   fs::path(include.target).parent_path() != "platform";
                        }),
              std::vector<std::string>{});
}

// ui -> document -> link -> foundation -> sdk: no folder of the stack includes one above it.
TEST(Layering, ThePluginStackPointsDown) {
    const std::vector<std::string> stack = {"sdk", "foundation", "link", "document", "ui"};
    for (std::size_t level = 0; level < stack.size(); ++level) {
        const std::vector<std::string> above(stack.begin() + level + 1, stack.end());
        EXPECT_EQ(offenders({stack[level]},
                            [&](const Include& include) {
                                return include.quoted && inAny(include.target, above);
                            }),
                  std::vector<std::string>{})
            << stack[level];
    }
}

// A file's folder: its first component, and for the host, the platform's implementations
// and the font manager, the folder inside them too.
std::string folderOf(const std::string& path) {
    const fs::path parent = fs::path(path).parent_path();
    auto part = parent.begin();
    if (part == parent.end())
        return "";
    const std::string top = part->string();
    if ((top == "host" || top == "platform" || top == "fontmanager") && ++part != parent.end())
        return top + "/" + part->string();
    return top;
}

// A cycle of the folder graph, as "a -> b -> a", or empty.
std::string findCycle(const std::map<std::string, std::set<std::string>>& edges) {
    std::map<std::string, int> state; // 1 on the path, 2 done
    std::vector<std::string> path;
    std::string cycle;
    std::function<bool(const std::string&)> visit = [&](const std::string& node) {
        state[node] = 1;
        path.push_back(node);
        if (auto out = edges.find(node); out != edges.end()) {
            for (const std::string& next : out->second) {
                if (state[next] == 1) {
                    for (auto at = std::find(path.begin(), path.end(), next); at != path.end();
                         ++at)
                        cycle += *at + " -> ";
                    cycle += next;
                    return true;
                }
                if (state[next] == 0 && visit(next))
                    return true;
            }
        }
        path.pop_back();
        state[node] = 2;
        return false;
    };
    for (const auto& [node, out] : edges)
        if (state[node] == 0 && visit(node))
            return cycle;
    return "";
}

TEST(Layering, NoTwoFoldersIncludeEachOther) {
    std::map<std::string, std::set<std::string>> edges;
    for (const Include& include : includes()) {
        const std::string from = folderOf(include.file), to = folderOf(include.target);
        if (include.quoted && !to.empty() && from != to && inAny(include.target, productFolders))
            edges[from].insert(to);
    }
    EXPECT_EQ(findCycle(edges), "");
    EXPECT_EQ(findCycle({{"a", {"b"}}, {"b", {"c"}}, {"c", {"a"}}}), "a -> b -> c -> a");
}

} // namespace
