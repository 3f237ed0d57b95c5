#pragma once

#include <filesystem>
#include <string>

namespace Vellumine {

// What the file system says of a file's identity and last change: device, inode, size, and
// the modification and status-change times to the nanosecond. Equal stamps mean the file
// was neither written, nor replaced, nor moved in place in between, so what was read from it
// still holds.
//
// Empty when the file cannot be looked at, and when it changed within the current tick of
// the clock the kernel stamps files with: a second change within that tick would leave the
// stamp as it is, so such a file must be read again rather than trusted.
std::string fileStamp(const std::filesystem::path& file);

} // namespace Vellumine
