#pragma once

#include "sdk/HostTypes.h"

#include <string>

// The user interface's locale, as resource lookups name it ("en" unless the environment
// chooses another language that the plug-in has a string table for).
struct PMLocaleId {
    std::string language = "en";
};

class MLocaleSetting {
public:
    static PMLocaleId GetLocale();
};

// Resource types.
inline constexpr uint32 kViewRsrcType = 0x56494557; // 'VIEW'

// Names one resource of one plug-in: dialog descriptions and rows are 'VIEW' resources.
struct RsrcSpec {
    RsrcSpec() = default;
    RsrcSpec(const PMLocaleId& locale, PluginID plugin, uint32 type, RsrcID id)
        : locale(locale), pluginID(plugin), rsrcType(type), rsrcID(id) {}
    PMLocaleId locale;
    PluginID pluginID = 0;
    uint32 rsrcType = kViewRsrcType;
    RsrcID rsrcID = 0;
};
