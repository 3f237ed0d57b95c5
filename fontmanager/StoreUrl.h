#pragma once

#include "fontmanager/Catalog.h"

#include <string>

namespace Vellumine {

// Where a buy request sends the user: a web search for the font's name unless the user set
// a store of their own (`vellumine config store-url TEMPLATE`, "%s" standing for the name).
inline const std::string defaultStoreUrl = "https://duckduckgo.com/?q=%s+font";

// Only http and https addresses are opened: a font's name table or a setting could
// otherwise hand the browser a local file or a command.
bool isWebAddress(const std::string& text);

// The template with every "%s" replaced by the name, percent-encoded.
std::string storeSearchUrl(const std::string& urlTemplate, const std::string& name);

// The address for buying a font: the vendor URL from the name table of a face of that
// PostScript name the library holds, else a store search for the name (the family and
// style when the library knows them).
std::string buyUrl(Catalog& catalog, const std::string& postScriptName);

} // namespace Vellumine
