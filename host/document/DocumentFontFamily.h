#pragma once

#include "sdk/IFontFamily.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace Galley {

class FontResolver;

// A font family of a document's database: the family name the document uses and the faces
// of it that the document knows, whether or not they are installed.
class DocumentFontFamily : public IFontFamily {
public:
    DocumentFontFamily(UID uid, std::string name, const FontResolver& resolver)
        : uid_(uid), name_(std::move(name)), resolver_(resolver) {}

    PMString GetFamilyName() const override { return PMString(name_); }
    void GetHostFamilyName(PMString& name) const override;
    int32 GetNumFaces() const override { return static_cast<int32>(faces_.size()); }
    PMString GetFaceName(int32 index) const override;
    PMString GetFacePostScriptName(const PMString& faceName) const override;
    IPMFont::FontType GetFaceFontType(const PMString& faceName) const override;
    IPMFont* QueryFace(const PMString& faceName) const override;

    UID uid() const { return uid_; }
    const std::string& name() const { return name_; }
    void addFace(const std::string& face);

private:
    UID uid_;
    std::string name_;
    std::vector<std::string> faces_;
    std::unordered_set<std::string> known_;
    const FontResolver& resolver_;
};

} // namespace Galley
