#pragma once

#include "host/document/FontReplacer.h"
#include "host/loop/FontFolderWatch.h"
#include "sdk/HostHooks.h"
#include "sdk/IDialog.h"
#include "sdk/ISession.h"

#include <functional>
#include <memory>
#include <string>

class IDocument;
class ISignalMgr;

namespace Galley {

class EventLoop;
class GalleySession;
class IdmlDocument;
class MainLoop;
class PluginCalls;
class Presenter;

// The open document and what follows it: opening it and signalling the plug-ins, its views,
// and the font-folder watch that reloads the font list when fonts arrive or go, so that the
// document's fonts are resolved again.
class DocumentHub : public ILayoutUIUtils, public IDocumentViews {
public:
    // Hands a document signal to the plug-ins' responders.
    using Responders = std::function<void(ServiceID service, ISignalMgr& signal)>;
    DocumentHub(EventLoop& events, MainLoop& loop, GalleySession& session, Presenter& presenter,
                PluginCalls& calls, Responders responders, FolderWatching fontFolders);
    ~DocumentHub() override;
    DocumentHub(const DocumentHub&) = delete;
    DocumentHub& operator=(const DocumentHub&) = delete;

    // Opens a document and, once it is fully built and shown, sends the after-open signal
    // to the responders. Throws IdmlError for a document that cannot be read; the document
    // open before stays then.
    IdmlDocument& open(const std::string& path);
    IdmlDocument* front() const { return document_.get(); }
    void close();
    void sendSignal(ServiceID service, IDocument* document);

    // Galley's own replacement (Find Font) in the open document, followed as the plug-in's
    // replacement is: the views show the document again, and the plug-ins' font-change
    // observers are told, so that an open fonts dialog scans the document again.
    ReplacementResult replaceFaces(const std::vector<FontKey>& from, const FontKey& to,
                                   bool redefineStyles);

    // Processes font-folder changes now (as the watch would).
    void fontFoldersChanged();
    // True while a change of the font folders waits to be processed: what the dialogs show
    // is about to change.
    bool fontChangesPending() const;

    // ILayoutUIUtils
    IDocument* GetFrontDocument() const override;
    // IDocumentViews: the open document's font usage is read again (and shown again).
    void InvalidateAllViews() override { viewsOutOfDate_ = true; }
    void UpdateViews(bool immediately) override;

private:
    void watchFontFolders(FolderWatching how);
    void waitForFontChange();
    void refreshFontWatch();

    EventLoop& events_;
    MainLoop& loop_;
    GalleySession& session_;
    Presenter& presenter_;
    PluginCalls& calls_;
    Responders responders_;
    std::unique_ptr<FontFolderWatch> fontWatch_;
    bool fontChangePending_ = false;
    std::unique_ptr<IdmlDocument> document_;
    bool viewsOutOfDate_ = false;
};

} // namespace Galley
