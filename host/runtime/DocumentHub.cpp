#include "host/runtime/DocumentHub.h"

#include "host/base/PluginCalls.h"
#include "host/document/IdmlDocument.h"
#include "host/loop/EventLoop.h"
#include "host/loop/FontFolderWatch.h"
#include "host/loop/MainLoop.h"
#include "host/runtime/Presenter.h"
#include "host/session/GalleySession.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/ISignalMgr.h"
#include "sdk/ISubject.h"

namespace Galley {

namespace {

class DocumentSignal : public ISignalMgr, public IDocumentSignalData {
public:
    DocumentSignal(ServiceID service, IDocument* document)
        : service_(service), document_(document) {}
    ServiceID GetServiceID() const override { return service_; }
    IDocumentSignalData* GetDocumentSignalData() const override {
        return const_cast<DocumentSignal*>(this);
    }
    IDocument* GetDocument() const override { return document_; }

private:
    ServiceID service_;
    IDocument* document_;
};

// A font-list update waits this long on the watch when nothing has changed yet: one tick.
constexpr int changeWaitMilliseconds = 16;

} // namespace

DocumentHub::DocumentHub(EventLoop& events, MainLoop& loop, GalleySession& session,
                         Presenter& presenter, PluginCalls& calls, Responders responders,
                         FolderWatching fontFolders)
    : events_(events), loop_(loop), session_(session), presenter_(presenter), calls_(calls),
      responders_(std::move(responders)) {
    if (fontFolders != FolderWatching::off)
        watchFontFolders(fontFolders);
}

DocumentHub::~DocumentHub() {
    session_.fonts().setChangeWait(nullptr);
}

void DocumentHub::watchFontFolders(FolderWatching how) {
    try {
        FaceSource& source = session_.fonts().source();
        fontWatch_ = FontFolderWatch::create(
            how, events_,
            [this] {
                // Coalesced: one reload however many events a burst of links brought.
                if (!fontChangePending_) {
                    fontChangePending_ = true;
                    loop_.post([this] { fontFoldersChanged(); });
                }
            },
            [&source] { source.readAhead(); });
        refreshFontWatch();
        session_.fonts().setChangeWait([this] { waitForFontChange(); });
    } catch (const std::exception& error) {
        presenter_.status(std::string(error.what()) +
                          "; fonts activated while Galley runs are seen only when the font list "
                          "is updated");
    }
}

// A plug-in polling the font list (its refresh loop holds the main thread for up to about
// three seconds) sleeps here a tick at a time; the windows are kept painted and answering
// the desktop between the ticks.
void DocumentHub::waitForFontChange() {
    events_.serviceWindows();
    if (fontWatch_)
        fontWatch_->waitForChange(changeWaitMilliseconds);
}

void DocumentHub::refreshFontWatch() {
    if (fontWatch_)
        fontWatch_->watch(session_.fonts().source().watchedFolders());
}

bool DocumentHub::fontChangesPending() const {
    return fontChangePending_ || (fontWatch_ && fontWatch_->waitForChange(0));
}

void DocumentHub::fontFoldersChanged() {
    fontChangePending_ = false;
    // The font manager announces the change to its observers (plug-ins among them).
    calls_.guarded("", "the font-system change", [&] { session_.fonts().takeInChanges(); });
    refreshFontWatch();
}

IdmlDocument& DocumentHub::open(const std::string& path) {
    auto opened = IdmlDocument::open(path, session_.fonts());
    document_ = std::move(opened);
    // Shown first, so that the plug-ins' dialogs come up in front of the document.
    presenter_.documentChanged(*document_);
    sendSignal(kAfterOpenDocSignalResponderService, document_.get());
    return *document_;
}

void DocumentHub::close() {
    document_.reset();
}

ReplacementResult DocumentHub::replaceFaces(const std::vector<FontKey>& from, const FontKey& to,
                                            bool redefineStyles) {
    if (!document_)
        return {};
    const ReplacementResult result = Galley::replaceFaces(*document_, from, to, redefineStyles);
    InvalidateAllViews();
    UpdateViews(true);
    // The plug-in learns of fonts that resolve differently only through the font manager's
    // change message: its observer then scans the document again and its dialogs follow.
    calls_.guarded("", "the document's font change", [&] {
        session_.fonts().GetSubject()->Change(kFontSystemChangedMessage, IID_IFONTMGR, nullptr);
    });
    return result;
}

void DocumentHub::sendSignal(ServiceID service, IDocument* document) {
    DocumentSignal signal(service, document);
    responders_(service, signal);
}

IDocument* DocumentHub::GetFrontDocument() const {
    return document_.get();
}

void DocumentHub::UpdateViews(bool immediately) {
    auto update = [this] {
        if (!viewsOutOfDate_)
            return;
        viewsOutOfDate_ = false;
        if (document_) {
            document_->usage().Update();
            presenter_.documentChanged(*document_);
        }
    };
    if (immediately)
        update();
    else
        loop_.post(update);
}

} // namespace Galley
