#pragma once

class IPluginRegistry;

namespace VLM {

// Registers the fonts dialogs with the host: the main fonts dialog, the activation
// progress dialog and the replacement dialog with their controllers and observers, the
// tree's rows and the list's element, the add-ins of the tree and of the list element,
// and the English string table.
void registerFontsDialogs(IPluginRegistry& registry);

} // namespace VLM
