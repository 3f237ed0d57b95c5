#include "host/fonts/SessionFontMgr.h"

#include "foundation/AsciiCase.h"

#include "sdk/HostIdentifiers.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace Galley {

namespace {

bool anyMatches(const std::vector<std::string>& names, const std::string& wanted) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& name) { return AsciiCase::equal(name, wanted); });
}

int formatRank(IPMFont::FontType type) {
    switch (type) {
    case IPMFont::kOpenTypeCFF:
        return 0;
    case IPMFont::kOpenTypeTT:
        return 1;
    case IPMFont::kTrueType:
        return 2;
    case IPMFont::kType1:
        return 3;
    default:
        return 4;
    }
}

template <typename Predicate>
InstalledFont* best(const std::vector<InstalledFont*>& fonts, IPMFont::FontType preferred,
                    Predicate matches) {
    InstalledFont* chosen = nullptr;
    auto rank = [&](const InstalledFont* font) {
        return std::make_pair(font->GetFontType() == preferred ? -1
                                                               : formatRank(font->GetFontType()),
                              font->face().identity());
    };
    for (InstalledFont* font : fonts) {
        if (matches(font->face()) && (!chosen || rank(font) < rank(chosen)))
            chosen = font;
    }
    return chosen;
}

} // namespace

SessionFontMgr::SessionFontMgr(FaceSource& source) : source_(source) {
    adopt(source_.load());
}

int32 SessionFontMgr::GetFontCount(bool, int32 filter) const {
    if (filter != kOutlineFontsOnly)
        return static_cast<int32>(current_.size());
    return static_cast<int32>(std::count_if(current_.begin(), current_.end(),
                                            [](auto* font) { return font->face().outline; }));
}

bool SessionFontMgr::UpdateFontList() {
    if (changeWait_ && !source_.changedSinceLoad())
        changeWait_();
    return takeInChanges();
}

bool SessionFontMgr::takeInChanges() {
    if (!source_.changedSinceLoad() || !adopt(source_.load()))
        return false;
    subject_.Change(kFontSystemChangedMessage, IID_IFONTMGR, nullptr);
    return true;
}

// Takes in a fresh listing; true when it differs from the previous one.
bool SessionFontMgr::adopt(std::vector<InstalledFace> faces) {
    std::set<std::string> before;
    for (InstalledFont* font : current_)
        before.insert(font->face().identity() + "\n" + font->face().postscriptName);
    std::set<std::string> after;
    for (const InstalledFace& face : faces)
        after.insert(face.identity() + "\n" + face.postscriptName);
    if (before == after && !current_.empty())
        return false;

    for (auto& [identity, font] : fonts_)
        font->installed = false;
    for (auto& [name, family] : families_)
        family->faces().clear();
    current_.clear();
    currentFamilies_.clear();
    for (InstalledFace& face : faces) {
        auto& slot = fonts_[face.identity()];
        if (slot)
            slot->setFace(std::move(face));
        else
            slot = std::make_unique<InstalledFont>(std::move(face));
        slot->installed = true;
        current_.push_back(slot.get());
        auto& family = families_[slot->face().family()];
        if (!family)
            family = std::make_unique<InstalledFamily>(slot->face().family());
        family->faces().push_back(slot.get());
    }
    std::sort(current_.begin(), current_.end(),
              [](auto* a, auto* b) { return a->face().identity() < b->face().identity(); });
    for (auto& [name, family] : families_) {
        if (!family->faces().empty())
            currentFamilies_.push_back(family.get());
    }
    return before != after;
}

IPMFont* SessionFontMgr::QueryFont(const PMString& name) const {
    const std::string text = name.GetUTF8String();
    if (text.empty())
        return nullptr;
    if (InstalledFont* byName = findByPostScriptName(text, IPMFont::kUnknownFontType))
        return byName;
    auto tab = text.find('\t');
    if (tab != std::string::npos)
        return findByFamilyAndStyle(text.substr(0, tab), text.substr(tab + 1),
                                    IPMFont::kUnknownFontType);
    if (InstalledFont* full = best(current_, IPMFont::kUnknownFontType, [&](const auto& face) {
            return AsciiCase::equal(face.fullName, text);
        }))
        return full;
    // "Family Style", where fontconfig's full name says something else ("DejaVu Serif" for
    // the Book face): every split at a blank, the longest family first.
    for (auto blank = text.rfind(' '); blank != std::string::npos && blank > 0;
         blank = text.rfind(' ', blank - 1))
        if (InstalledFont* face = findByFamilyAndStyle(
                text.substr(0, blank), text.substr(blank + 1), IPMFont::kUnknownFontType))
            return face;
    if (InstalledFamily* family = familyNamed(text)) {
        if (InstalledFont* regular =
                findByFamilyAndStyle(family->name(), "Regular", IPMFont::kUnknownFontType))
            return regular;
        return family->faces().front();
    }
    return nullptr;
}

int32 SessionFontMgr::GetNumFontFamilies() const {
    return static_cast<int32>(currentFamilies_.size());
}

IFontFamily* SessionFontMgr::GetNthFontFamily(int32 index) const {
    if (index < 0 || index >= GetNumFontFamilies())
        return nullptr;
    return currentFamilies_[index];
}

IFontFamily* SessionFontMgr::QueryFontFamily(const PMString& familyName) const {
    return familyNamed(familyName.GetUTF8String());
}

InstalledFamily* SessionFontMgr::familyNamed(const std::string& name) const {
    for (InstalledFamily* family : currentFamilies_) {
        if (family->name() == name)
            return family;
    }
    for (InstalledFamily* family : currentFamilies_) {
        if (AsciiCase::equal(family->name(), name))
            return family;
    }
    return nullptr;
}

InstalledFont* SessionFontMgr::findByPostScriptName(const std::string& name,
                                                    IPMFont::FontType preferred) const {
    if (name.empty())
        return nullptr;
    return best(current_, preferred,
                [&](const InstalledFace& face) { return face.postscriptName == name; });
}

InstalledFont* SessionFontMgr::findByFamilyAndStyle(const std::string& family,
                                                    const std::string& style,
                                                    IPMFont::FontType preferred) const {
    return best(current_, preferred, [&](const InstalledFace& face) {
        return anyMatches(face.families, family) && anyMatches(face.styles, style);
    });
}

} // namespace Galley
