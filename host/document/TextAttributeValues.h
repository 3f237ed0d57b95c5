#pragma once

#include "sdk/TextAttributes.h"

namespace Galley {

class FontFamilyAttribute : public ITextAttrUID {
public:
    explicit FontFamilyAttribute(UID uid = kInvalidUID) : uid_(uid) {}
    UID GetUIDData() const override { return uid_; }
    void SetUIDData(UID uid) override { uid_ = uid; }

private:
    UID uid_;
};

class FontFaceAttribute : public ITextAttrFont {
public:
    explicit FontFaceAttribute(PMString face = PMString()) : face_(std::move(face)) {}
    PMString GetFontName() const override { return face_; }
    void SetFontName(const PMString& face) override { face_ = face; }

private:
    PMString face_;
};

} // namespace Galley
