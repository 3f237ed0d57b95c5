#pragma once

#include <string>

namespace VLM {

// Shows `text` in a modal alert with one OK button; returns when it was closed.
void showErrorMessage(std::string text);

} // namespace VLM
