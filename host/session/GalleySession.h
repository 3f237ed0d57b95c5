#pragma once

#include "host/fonts/SessionFontMgr.h"
#include "host/session/TextAttrUtils.h"
#include "sdk/ISession.h"

#include <functional>

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
    IApplication* QueryApplication() override { return application_; }
    ILayoutUIUtils* QueryLayoutUIUtils() override { return layout_; }
    IObserver* QueryObserver(PMIID iid) override { return observers_ ? observers_(iid) : nullptr; }
    IDocumentViews* QueryDocumentViews() override { return views_; }

    // The application runtime, once it runs: its dialogs, its front document and the
    // observers plug-ins keep on the session.
    void attachRuntime(IApplication* application, ILayoutUIUtils* layout, IDocumentViews* views,
                       std::function<IObserver*(PMIID)> observers) {
        application_ = application;
        layout_ = layout;
        views_ = views;
        observers_ = std::move(observers);
    }
    SessionFontMgr& fonts() { return fontMgr_; }

private:
    SessionFontMgr fontMgr_;
    TextAttrUtils textAttrUtils_;
    IApplication* application_ = nullptr;
    ILayoutUIUtils* layout_ = nullptr;
    IDocumentViews* views_ = nullptr;
    std::function<IObserver*(PMIID)> observers_;
};

} // namespace Galley
