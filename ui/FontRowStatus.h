#pragma once

#include "link/FontInfo.h"
#include "sdk/IControlView.h"

#include <string>

// What a font row says about its font: the status text's string key and the status colour.
// The two are decided independently, each in its own order, so a font with no matching
// count but with a type match gets an empty status in red.
namespace FontRowStatus {

inline constexpr RGBColor orange{0.98, 0.56, 0.4};
inline constexpr RGBColor green{0.2, 0.6, 0.4};
inline constexpr RGBColor red{0.8, 0.2, 0.2};

// The string key of the status text; empty when the row shows no status.
std::string textKey(const VLMFontInfo& font);
RGBColor colour(const VLMFontInfo& font);

} // namespace FontRowStatus
