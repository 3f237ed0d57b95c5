#pragma once

#include "host/document/DocumentFontUsage.h"
#include "host/document/FontFamilyTable.h"
#include "host/document/FontResolver.h"
#include "host/document/StoryTextModel.h"
#include "host/idml/DesignMap.h"
#include "host/idml/FontsCatalog.h"
#include "host/idml/IdmlPackage.h"
#include "host/idml/Story.h"
#include "host/idml/StyleSheet.h"
#include "sdk/IDataBase.h"
#include "sdk/IDocument.h"
#include "sdk/IStoryList.h"
#include "sdk/IWorkspace.h"

#include <memory>
#include <string>
#include <vector>

namespace Galley {

class SessionFontMgr;

// An IDML document open in Galley.
class IdmlDocument : public IDocument, public IDataBase, public IStoryList, public IWorkspace {
public:
    // Reads the design map, the fonts, the styles and every story once, within `limits`.
    // Throws IdmlError naming the file and the part at fault; nothing is written either way.
    static std::unique_ptr<IdmlDocument> open(const std::string& path, SessionFontMgr& fonts,
                                              const PackageLimits& limits = {});
    // The same for a package already in memory, within the package's limits.
    static std::unique_ptr<IdmlDocument> open(IdmlPackage package, SessionFontMgr& fonts);

    // IDocument
    PMString GetName() const override;
    IDataBase* GetDataBase() override { return this; }
    IDocumentFontUsage* GetDocumentFontUsage() override { return &usage_; }
    IWorkspace* GetDocWorkSpace() override { return this; }
    IStoryList* GetStoryList() override { return this; }
    bool IsConverted() const override { return isConvertedOnOpen(designMap_.domVersion); }
    bool IsModified() const override;

    // IDataBase
    IFontFamily* InstantiateFontFamily(UID uid) override { return families_.family(uid); }
    ITextModel* InstantiateTextModel(UID uid) override;

    // IStoryList
    int32 GetTextModelCount() const override { return static_cast<int32>(models_.size()); }
    UID GetNthTextModelUID(int32 index) const override;

    // IWorkspace
    IDocFontMgr* GetDocFontMgr() override { return &families_; }

    const std::string& path() const { return package_.path(); }
    const IdmlPackage& package() const { return package_; }
    const DesignMap& designMap() const { return designMap_; }
    const StyleSheet& styles() const { return styles_; }
    StyleSheet& styles() { return styles_; }
    const FontsCatalog& catalog() const { return catalog_; }
    const FontResolver& resolver() const { return resolver_; }
    FontFamilyTable& families() { return families_; }
    DocumentFontUsage& usage() { return usage_; }
    const std::vector<std::unique_ptr<Story>>& stories() const { return stories_; }

    // After a save: the package now holds what was written and nothing is modified.
    void adoptSavedPackage(IdmlPackage package);

private:
    IdmlDocument(IdmlPackage package, SessionFontMgr& fonts);
    XmlDocPtr parsePart(const std::string& name, bool required, NodeBudget& budget) const;
    UID nextUID() { return ++lastUID_; }

    IdmlPackage package_;
    DesignMap designMap_;
    FontsCatalog catalog_;
    StyleSheet styles_;
    std::vector<std::unique_ptr<Story>> stories_;
    std::vector<std::unique_ptr<StoryTextModel>> models_;
    FontResolver resolver_;
    FontFamilyTable families_;
    DocumentFontUsage usage_;
    UID lastUID_ = 0;
};

} // namespace Galley
