#pragma once

// What the command line's files share (Cli.cpp, CliSupport.cpp, CliLibrary.cpp).
#include "fontmanager/Catalog.h"
#include "fontmanager/Cli.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace Vellumine {

constexpr int cliUsageError = 2;

// The library this process works on (LibrarySelection.h), opened for a command that
// changes it (being busy is reported where the user sees it), or for one that only reads.
std::unique_ptr<Catalog> openForWriting(std::ostream& errors);
std::unique_ptr<Catalog> openForReading();

// A value in a tab-separated line: tabs, line ends and other control characters would
// split or forge lines, so they are written as escapes ("\t", "\n", "\x1b"), and a
// backslash as "\\".
std::string field(const std::string& value);
std::string formatTime(std::int64_t unixTime);
void printFace(const FaceRecord& face, std::ostream& out);
// A container id, or a PostScript name; `all` allows a name to stand for several faces.
bool resolveFaces(Catalog& catalog, const std::string& argument, bool all,
                  std::vector<std::int64_t>& ids, std::ostream& errors);

int statusCommand(const CliArguments& arguments, std::ostream& out, std::ostream& errors);
int removeCommand(const CliArguments& arguments, std::ostream& out, std::ostream& errors);
int grantCommand(const CliArguments& arguments, std::ostream& out, std::ostream& errors);

} // namespace Vellumine
