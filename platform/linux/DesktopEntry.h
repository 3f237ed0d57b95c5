#pragma once

#include <map>
#include <string>
#include <vector>

// Reading desktop entries (the freedesktop.org desktop-entry format): the [Desktop Entry]
// group of a key file, string escapes, and the Exec line's quoting and field codes. Pure
// functions: no file system access, so that every rule can be tested on its own.
namespace Platform::Linux::DesktopEntry {

// The unlocalised keys of the [Desktop Entry] group, values as written (not unescaped).
// False with `error` set when the text is not a key file or has no such group.
bool parseGroup(const std::string& text, std::map<std::string, std::string>& keys,
                std::string& error);

// Applies the escapes of string values: \s \n \t \r \\. Other backslash pairs are kept
// as they are, for the Exec quoting rules to read.
std::string unescapeString(const std::string& value);

// Splits an (unescaped) Exec value into arguments: separated by spaces; an argument in
// double quotes may hold spaces and the escapes \" \` \$ \\. False with `error` set on an
// unterminated quote, an unknown escape inside quotes, text glued to a closing quote or a
// double quote inside an unquoted argument.
bool splitArguments(const std::string& exec, std::vector<std::string>& arguments,
                    std::string& error);

// What the field codes expand to.
struct FieldValues {
    std::string icon;     // %i: "--icon <Icon>", dropped when there is no icon
    std::string name;     // %c: the Name key
    std::string filePath; // %k: where the desktop file is
};

// Expands %%, %i, %c, %k; drops the file and URL codes (%f %F %u %U) that a launch
// without files leaves empty, and the deprecated %d %D %n %N %v %m. An argument that
// consisted of a dropped code alone disappears. False on an unknown code or a lone %.
bool expandFieldCodes(const std::vector<std::string>& arguments, const FieldValues& values,
                      std::vector<std::string>& argv, std::string& error);

// The whole road from the Exec key's raw value to an argument vector; false when the line
// is malformed or yields no program.
bool parseExec(const std::string& rawExec, const FieldValues& values,
               std::vector<std::string>& argv, std::string& error);

} // namespace Platform::Linux::DesktopEntry
