#include "host/loop/FontFolderWatch.h"

#include "host/loop/InotifyFolderWatch.h"
#include "host/loop/PollingFolderWatch.h"

#include <filesystem>
#include <set>

namespace Galley {

namespace {

// Often enough that a font's arrival is seen within a couple of milliseconds, rarely enough
// that looking at a hundred folders costs a few per cent of a core while batch mode runs.
constexpr int pollingPeriodMilliseconds = 2;

} // namespace

std::unique_ptr<FontFolderWatch> FontFolderWatch::create(FolderWatching how, EventLoop& loop,
                                                         std::function<void()> onChange,
                                                         std::function<void()> onChangeSeen) {
    switch (how) {
    case FolderWatching::inotify:
        return std::make_unique<InotifyFolderWatch>(loop, std::move(onChange));
    case FolderWatching::polling:
        return std::make_unique<PollingFolderWatch>(
            loop, std::move(onChange), std::move(onChangeSeen), pollingPeriodMilliseconds);
    case FolderWatching::off:
        break;
    }
    return nullptr;
}

std::string existingFolderFor(const std::string& folder) {
    std::filesystem::path path(folder);
    std::error_code ignored;
    while (!path.empty() && !std::filesystem::is_directory(path, ignored)) {
        if (path == path.parent_path())
            return {};
        path = path.parent_path();
    }
    return path.string();
}

std::vector<std::string> foldersToWatch(const std::vector<std::string>& folders) {
    std::set<std::string> wanted;
    for (const auto& folder : folders) {
        const std::string existing = existingFolderFor(folder);
        if (!existing.empty())
            wanted.insert(existing);
    }
    return {wanted.begin(), wanted.end()};
}

} // namespace Galley
