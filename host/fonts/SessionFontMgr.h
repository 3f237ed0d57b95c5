#pragma once

#include "host/base/Subject.h"
#include "host/fonts/InstalledFace.h"
#include "host/fonts/InstalledFont.h"
#include "sdk/IFontMgr.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Galley {

// The session's font manager over a face source (fontconfig in Galley).
class SessionFontMgr : public IFontMgr, public IFontListNotices {
public:
    explicit SessionFontMgr(FaceSource& source);

    int32 GetFontCount(bool afterPendingUpdate, int32 filter) const override;
    bool UpdateFontList() override;
    // Takes in what the folders hold now, without waiting for a change: for Galley's own
    // reports, which want the present state rather than the next change.
    bool takeInChanges();
    IPMFont* QueryFont(const PMString& name) const override;
    int32 GetNumFontFamilies() const override;
    IFontFamily* GetNthFontFamily(int32 index) const override;
    IFontFamily* QueryFontFamily(const PMString& familyName) const override;
    ISubject* GetSubject() override { return &subject_; }
    IFontListNotices* QueryFontListNotices() override { return this; }
    // A refresh is complete; Galley's font lists are read from here whenever they are
    // shown, so only the count of refreshes is kept (the GUI watches it).
    void FontListRefreshed(bool) override { ++refreshes_; }
    int refreshes() const { return refreshes_; }

    // Called by UpdateFontList when the folders show no change, to wait briefly for one (the
    // runtime waits up to a tick on its font-folder watch), so that a caller polling the
    // font list in a loop sleeps instead of spinning.
    void setChangeWait(std::function<void()> wait) { changeWait_ = std::move(wait); }
    const FaceSource& source() const { return source_; }
    FaceSource& source() { return source_; }

    // The installed face with that PostScript name. When several formats carry the name
    // (URW base35 ships each face as Type 1 and OpenType CFF), a face of `preferred` type
    // wins, then OpenType CFF, OpenType TrueType, TrueType, Type 1, the rest.
    InstalledFont* findByPostScriptName(const std::string& name, IPMFont::FontType preferred) const;
    // The installed face whose family and style match (any of fontconfig's names for them,
    // ignoring case), in the same order of preference.
    InstalledFont* findByFamilyAndStyle(const std::string& family, const std::string& style,
                                        IPMFont::FontType preferred) const;
    const std::vector<InstalledFont*>& installedFonts() const { return current_; }

private:
    bool adopt(std::vector<InstalledFace> faces);
    InstalledFamily* familyNamed(const std::string& name) const;

    FaceSource& source_;
    std::map<std::string, std::unique_ptr<InstalledFont>> fonts_; // by identity, never dropped
    std::map<std::string, std::unique_ptr<InstalledFamily>> families_;
    std::vector<InstalledFont*> current_;
    std::vector<InstalledFamily*> currentFamilies_;
    Subject subject_;
    std::function<void()> changeWait_;
    int refreshes_ = 0;
};

} // namespace Galley
