#pragma once

#include "host/fonts/InstalledFace.h"
#include "sdk/IFontFamily.h"
#include "sdk/IPMFont.h"

#include <vector>

namespace Galley {

// An installed face as the session hands it out. It lives for the whole session, so
// pointers stay valid across font-list updates; `installed` tells whether the face is
// still there.
class InstalledFont : public IPMFont {
public:
    explicit InstalledFont(InstalledFace face) : face_(std::move(face)) {}

    PMString GetPostScriptName() const override { return PMString(face_.postscriptName); }
    PMString GetFamilyName() const override { return PMString(face_.family()); }
    PMString GetStyleName() const override { return PMString(face_.style()); }
    FontType GetFontType() const override { return face_.type; }

    const InstalledFace& face() const { return face_; }
    void setFace(InstalledFace face) { face_ = std::move(face); }
    bool installed = true;

private:
    InstalledFace face_;
};

// An installed family: the installed faces that share a family name.
class InstalledFamily : public IFontFamily {
public:
    explicit InstalledFamily(std::string name) : name_(std::move(name)) {}

    PMString GetFamilyName() const override { return PMString(name_); }
    void GetHostFamilyName(PMString& name) const override { name = PMString(name_); }
    int32 GetNumFaces() const override { return static_cast<int32>(faces_.size()); }
    PMString GetFaceName(int32 index) const override;
    PMString GetFacePostScriptName(const PMString& faceName) const override;
    IPMFont::FontType GetFaceFontType(const PMString& faceName) const override;
    IPMFont* QueryFace(const PMString& faceName) const override;

    const std::string& name() const { return name_; }
    std::vector<InstalledFont*>& faces() { return faces_; }

private:
    std::string name_;
    std::vector<InstalledFont*> faces_;
};

} // namespace Galley
