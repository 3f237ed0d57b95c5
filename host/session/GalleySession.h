#pragma once

#include "host/session/SessionFontMgr.h"
#include "host/session/TextAttrUtils.h"
#include "sdk/ISession.h"

namespace Galley {

// The host session: the font manager over a face source and the text-attribute utilities.
// While it lives it is the SDK's gSession.
class GalleySession : public ISession {
public:
    explicit GalleySession(FaceSource& faces);
    ~GalleySession() override;
    GalleySession(const GalleySession&) = delete;
    GalleySession& operator=(const GalleySession&) = delete;

    IFontMgr* GetFontMgr() override { return &fontMgr_; }
    ITextAttrUtils* GetTextAttrUtils() override { return &textAttrUtils_; }
    SessionFontMgr& fonts() { return fontMgr_; }

private:
    SessionFontMgr fontMgr_;
    TextAttrUtils textAttrUtils_;
};

} // namespace Galley
