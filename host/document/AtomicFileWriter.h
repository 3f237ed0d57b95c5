#pragma once

#include <string>

namespace Galley {

// Replaces what the file at `path` holds with `bytes` in one step, as editors save: the
// bytes go to a hidden temporary beside the file (".NAME.saving-XXXXXX"), which is synced
// and renamed over it, so that a failure at any point leaves the old file whole.
//
// - A symbolic link at `path` (or a chain of them) is followed: the file it points to is
//   replaced in its own folder, and the link stays a link.
// - An existing file keeps its mode and, where this user may set them, its owner and
//   group. A new file gets 0666 less the umask (and the folder's default ACL), as open(2)
//   gives it.
// - Temporaries of the same file that a save killed half-way left behind are removed
//   first. A save holds an exclusive flock(2) on its temporary while it runs, so only the
//   ones no running save holds are taken, and only this user's regular files.
//
// Returns the path of the file written. Throws std::runtime_error saying what failed;
// the file is then as it was.
std::string replaceFileAtomically(const std::string& path, const std::string& bytes);

} // namespace Galley
