#pragma once

// A host in memory for the plug-in's document services: a document with its font usage
// and families, a session with a font manager and a dialog manager that records what the
// plug-in asks of them, and alerts that are recorded instead of shown.

#include "sdk/CAlert.h"
#include "sdk/HostHooks.h"
#include "sdk/IDataBase.h"
#include "sdk/IDialog.h"
#include "sdk/IDocument.h"
#include "sdk/IDocumentFontUsage.h"
#include "sdk/IFontFamily.h"
#include "sdk/IFontMgr.h"
#include "sdk/ISession.h"
#include "sdk/ISubject.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace DocumentTest {

struct Face {
    std::string name, postscriptName;
    IPMFont::FontType type = IPMFont::kOpenTypeCFF;
};

class FakeFamily : public IFontFamily {
public:
    FakeFamily(std::string name, std::string hostName, std::vector<Face> faces)
        : name_(std::move(name)), hostName_(std::move(hostName)), faces_(std::move(faces)) {}
    PMString GetFamilyName() const override { return PMString(name_); }
    void GetHostFamilyName(PMString& name) const override { name.SetCString(hostName_); }
    int32 GetNumFaces() const override { return static_cast<int32>(faces_.size()); }
    PMString GetFaceName(int32 i) const override { return PMString(faces_.at(static_cast<std::size_t>(i)).name); }
    PMString GetFacePostScriptName(const PMString& face) const override { return PMString(find(face).postscriptName); }
    IPMFont::FontType GetFaceFontType(const PMString& face) const override { return find(face).type; }
    IPMFont* QueryFace(const PMString&) const override { return nullptr; }

private:
    const Face& find(const PMString& face) const {
        static const Face none{"", "", IPMFont::kUnknownFontType};
        auto it = std::find_if(faces_.begin(), faces_.end(),
                               [&](const Face& f) { return f.name == face.GetUTF8String(); });
        return it == faces_.end() ? none : *it;
    }
    std::string name_, hostName_;
    std::vector<Face> faces_;
};

// Usage entries: family UID and face name, missing or used.
struct Entry {
    UID family;
    std::string face;
};

class FakeDocument : public IDocument, public IDataBase, public IDocumentFontUsage {
public:
    std::map<UID, std::unique_ptr<FakeFamily>> families;
    std::vector<Entry> missing, used;
    bool converted = false;
    int updates = 0;

    void addFamily(UID uid, const std::string& name, std::vector<Face> faces) {
        families[uid] = std::make_unique<FakeFamily>(name, name + " (host)", std::move(faces));
    }

    PMString GetName() const override { return PMString("fake.idml"); }
    IDataBase* GetDataBase() override { return this; }
    IDocumentFontUsage* GetDocumentFontUsage() override { return this; }
    IWorkspace* GetDocWorkSpace() override { return nullptr; }
    IStoryList* GetStoryList() override { return nullptr; }
    bool IsConverted() const override { return converted; }
    bool IsModified() const override { return false; }

    IFontFamily* InstantiateFontFamily(UID uid) override {
        auto it = families.find(uid);
        return it == families.end() ? nullptr : it->second.get();
    }
    ITextModel* InstantiateTextModel(UID) override { return nullptr; }

    void Update() override { ++updates; }
    int32 GetMissingFontCount() const override { return static_cast<int32>(missing.size()); }
    UID GetMissingNthFontFamilyUID(int32 n) const override { return missing.at(static_cast<std::size_t>(n)).family; }
    PMString GetMissingNthFontFaceName(int32 n) const override { return PMString(missing.at(static_cast<std::size_t>(n)).face); }
    int32 GetUsedFontCount() const override { return static_cast<int32>(used.size()); }
    UID GetUsedNthFontFamilyUID(int32 n) const override { return used.at(static_cast<std::size_t>(n)).family; }
    PMString GetUsedNthFontFaceName(int32 n) const override { return PMString(used.at(static_cast<std::size_t>(n)).face); }
};

class FakeSubject : public ISubject {
public:
    void AttachObserver(IObserver* o, PMIID p) override {
        if (!IsAttached(o, p))
            attached.emplace_back(o, p);
    }
    void DetachObserver(IObserver* o, PMIID p) override { std::erase(attached, std::make_pair(o, p)); }
    bool IsAttached(const IObserver* o, PMIID p) const override {
        return std::find(attached.begin(), attached.end(), std::make_pair(const_cast<IObserver*>(o), p)) != attached.end();
    }
    void Change(ClassID change, PMIID protocol, void* data) override {
        for (auto [observer, p] : std::vector(attached))
            if (p == protocol && observer->IsEnabled())
                observer->Update(change, this, protocol, data);
    }
    std::vector<std::pair<IObserver*, PMIID>> attached;
};

// A font manager whose count the test scripts: `counts` are answered in order, the last
// one for ever after.
class FakeFontMgr : public IFontMgr, public IFontListNotices {
public:
    std::vector<int32> counts{10};
    int updates = 0, refreshed = 0;
    int32 GetFontCount(bool, int32) const override {
        return counts[std::min<std::size_t>(static_cast<std::size_t>(updates), counts.size() - 1)];
    }
    bool UpdateFontList() override { ++updates; return false; }
    IPMFont* QueryFont(const PMString&) const override { return nullptr; }
    int32 GetNumFontFamilies() const override { return 0; }
    IFontFamily* GetNthFontFamily(int32) const override { return nullptr; }
    IFontFamily* QueryFontFamily(const PMString&) const override { return nullptr; }
    ISubject* GetSubject() override { return &subject; }
    IFontListNotices* QueryFontListNotices() override { return this; }
    void FontListRefreshed(bool) override { ++refreshed; }
    FakeSubject subject;
};

// Records the dialogs the plug-in makes and what it does with them. A dialog's wait runs
// `duringWait` (the user, or the fonts' arrival) and then closes it.
class FakeDialogs : public IApplication, public IDialogMgr {
public:
    struct Made : IDialog {
        FakeDialogs* owner = nullptr;
        RsrcID resource = 0;
        std::vector<std::string> calls;
        bool open = false;
        void Open(IDialog*) override { calls.push_back("open"); open = true; }
        void Close(int32) override { open = false; }
        bool IsOpen() const override { return open; }
        void WaitForDialog(bool idleTasks) override {
            calls.push_back(idleTasks ? "wait with idle tasks" : "wait");
            if (owner->duringWait)
                owner->duringWait(*this);
            open = false;
        }
        void SetClosesByItself(bool byItself) override { calls.push_back(byItself ? "closes by itself" : "needs the user"); }
        IPanelControlData* GetDialogPanel() override { return nullptr; }
        IDialogController* GetController() override { return nullptr; }
        IObserver* GetObserver() override { return nullptr; }
        void PressDefaultButton() override {}
        IStringData* GetStringData() override { return nullptr; }
        IIntData* GetIntData() override { return nullptr; }
        IPMUnknown* QueryAddIn(PMIID) const override { return nullptr; }
    };
    IDialogMgr* GetDialogMgr() override { return this; }
    IDialog* CreateNewDialog(const RsrcSpec& spec, IDialog::DialogType) override {
        if (refuse)
            return nullptr;
        made.push_back(std::make_unique<Made>());
        made.back()->owner = this;
        made.back()->resource = spec.rsrcID;
        return made.back().get();
    }
    IDialog* GetFrontDialog() const override { return nullptr; }
    std::vector<std::unique_ptr<Made>> made;
    std::function<void(Made&)> duringWait;
    bool refuse = false;
};

class FakeSession : public ISession, public IHostHooks, public IAlertPresenter {
public:
    FakeSession() {
        previous = gSession;
        gSession = this;
        SetHostHooks(this);
    }
    ~FakeSession() override {
        gSession = previous;
        SetHostHooks(nullptr);
    }
    IFontMgr* GetFontMgr() override { return &fonts; }
    ITextAttrUtils* GetTextAttrUtils() override { return nullptr; }
    IApplication* QueryApplication() override { return withDialogs ? &dialogs : nullptr; }
    IObserver* QueryObserver(PMIID iid) override { return iid == observerIID ? observer : nullptr; }

    void installIdleTask(CIdleTask*, uint32) override {}
    void uninstallIdleTask(CIdleTask*) override {}
    bool isIdleTaskInstalled(const CIdleTask*) const override { return false; }
    IAlertPresenter& alerts() override { return *this; }
    IControlView* createRowWidget(IControlView*, const RsrcSpec&) override { return nullptr; }
    PMLocaleId locale() const override { return {}; }
    int16 present(Kind, const PMString& message, const PMString[3], int16 defaultButton, int16) override {
        alertTexts.push_back(message.GetUTF8String());
        return defaultButton;
    }

    FakeFontMgr fonts;
    FakeDialogs dialogs;
    bool withDialogs = true;
    IObserver* observer = nullptr;
    PMIID observerIID = 0;
    std::vector<std::string> alertTexts;

private:
    ISession* previous = nullptr;
};

} // namespace DocumentTest
