#include "sdk/PMString.h"

PMString::PMString(const char* utf8, TranslationFlag flag)
    : text(WideString::fromUTF8(utf8 ? std::string_view(utf8) : std::string_view())),
      translatable(flag == kTranslateDuringCall) {}

PMString::PMString(std::string_view utf8, TranslationFlag flag)
    : text(WideString::fromUTF8(utf8)), translatable(flag == kTranslateDuringCall) {}

void PMString::Append(const PMString& other) {
    text = WideString(text.Units() + other.text.Units());
}

void PMString::Append(std::string_view utf8) {
    Append(PMString(utf8));
}
