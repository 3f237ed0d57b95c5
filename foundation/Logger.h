#pragma once

#include <string>

// The plug-in's log. Silent unless the environment variable VELLUMINE_LOG is set to 1
// (or any non-empty value other than 0): then every line goes to standard error as
// "<ISO time> [<component>] <text>", so that a user can follow what the plug-in and the
// font manager said to each other.
class Logger {
public:
    static void log(const std::string& component, const std::string& text, int level = 0);

    // Whether lines are written; read once from the environment, changeable for tests.
    static bool isEnabled();
    static void setEnabled(bool enabled);
};
