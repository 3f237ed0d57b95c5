#include "host/document/IdmlDocument.h"

#include "host/idml/IdmlError.h"

#include <stdexcept>

namespace Galley {

IdmlDocument::IdmlDocument(IdmlPackage package, SessionFontMgr& fonts)
    : package_(std::move(package)), resolver_(catalog_, fonts),
      families_(resolver_, [this] { return nextUID(); }), usage_(*this) {}

std::unique_ptr<IdmlDocument> IdmlDocument::open(const std::string& path, SessionFontMgr& fonts,
                                                 const PackageLimits& limits) {
    return open(IdmlPackage::read(path, limits), fonts);
}

std::unique_ptr<IdmlDocument> IdmlDocument::open(IdmlPackage package, SessionFontMgr& fonts) {
    const std::string path = package.path();
    const PackageLimits limits = package.limits();
    std::unique_ptr<IdmlDocument> document(new IdmlDocument(std::move(package), fonts));
    IdmlDocument& d = *document;
    NodeBudget budget{limits.maxPartNodes, limits.maxTotalNodes};
    XmlDocPtr designMap = d.parsePart("designmap.xml", true, budget);
    d.designMap_ = DesignMap::parse(path, designMap.get());
    designMap.reset();
    if (XmlDocPtr fontsXml = d.parsePart(d.designMap_.fontsPart, false, budget))
        d.catalog_ = FontsCatalog::parse(fontsXml.get());
    if (XmlDocPtr stylesXml = d.parsePart(d.designMap_.stylesPart, false, budget))
        d.styles_ = StyleSheet::parse(path, d.designMap_.stylesPart, std::move(stylesXml));
    for (const std::string& part : d.designMap_.storyParts) {
        if (!d.package_.contains(part))
            throw IdmlError(path, part, "designmap.xml lists this story, but the package lacks it");
        d.stories_.push_back(
            std::make_unique<Story>(path, part, d.parsePart(part, true, budget), d.styles_));
        d.models_.push_back(std::make_unique<StoryTextModel>(d.nextUID(), *d.stories_.back(), d));
    }
    try {
        d.usage_.Update();
    } catch (const std::length_error& error) {
        throw IdmlError(path, "", error.what());
    }
    return document;
}

XmlDocPtr IdmlDocument::parsePart(const std::string& name, bool required,
                                  NodeBudget& budget) const {
    if (!package_.contains(name)) {
        if (required)
            throw IdmlError(package_.path(), name, "the package lacks this part");
        return nullptr;
    }
    return parseXmlPart(package_.path(), name, package_.inflate(name), &budget);
}

PMString IdmlDocument::GetName() const {
    const std::string& path = package_.path();
    return PMString(path.substr(path.rfind('/') == std::string::npos ? 0 : path.rfind('/') + 1));
}

bool IdmlDocument::IsModified() const {
    if (styles_.modified())
        return true;
    for (const auto& story : stories_) {
        if (story->modified())
            return true;
    }
    return false;
}

ITextModel* IdmlDocument::InstantiateTextModel(UID uid) {
    for (const auto& model : models_) {
        if (model->GetUID() == uid)
            return model.get();
    }
    return nullptr;
}

UID IdmlDocument::GetNthTextModelUID(int32 index) const {
    if (index < 0 || index >= GetTextModelCount())
        return kInvalidUID;
    return models_[index]->GetUID();
}

void IdmlDocument::adoptSavedPackage(IdmlPackage package) {
    package_ = std::move(package);
    styles_.markSaved();
    for (const auto& story : stories_)
        story->markSaved();
}

} // namespace Galley
