#pragma once

#include "sdk/WideString.h"

#include <string>
#include <string_view>

class IPMStream;

// The host's display string. Text is kept as UTF-16 like WideString; the 8-bit
// constructors take UTF-8. The translatable flag marks texts the host should look up in
// the plug-in's string tables (keys such as "0x11f300kVellumineMissingTextKey").
class PMString {
public:
    enum TranslationFlag { kTranslateDuringCall, kDontTranslateDuringCall };

    PMString() = default;
    PMString(const char* utf8, TranslationFlag flag = kTranslateDuringCall); // NOLINT
    explicit PMString(std::string_view utf8, TranslationFlag flag = kTranslateDuringCall);
    explicit PMString(const WideString& wide) : text(wide) {}

    void SetCString(std::string_view utf8) { text = WideString::fromUTF8(utf8); }
    void SetString(const WideString& wide) { text = wide; }
    void Append(const PMString& other);
    void Append(std::string_view utf8);
    void clear() { text = WideString(); }
    // Reads or writes the text, in the stream's direction.
    void ReadWrite(IPMStream* stream);

    bool IsEmpty() const { return text.empty(); }
    std::size_t CharCount() const { return text.CharCount(); }
    const WideString& GetWideString() const { return text; }
    WideString ToWideString() const { return text; }
    std::string GetUTF8String() const { return text.ToUTF8(); }

    void SetTranslatable(bool value) { translatable = value; }
    bool IsTranslatable() const { return translatable; }

    friend bool operator==(const PMString& a, const PMString& b) { return a.text == b.text; }
    friend bool operator<(const PMString& a, const PMString& b) {
        return a.text.Units() < b.text.Units();
    }

private:
    WideString text;
    bool translatable = true;
};
