#include "host/session/TextAttrUtils.h"

#include "host/document/ApplyFontCommand.h"
#include "host/document/IdmlDocument.h"
#include "host/document/StoryTextModel.h"
#include "host/document/TextAttributeValues.h"

namespace Galley {

std::unique_ptr<ITextAttrUID> TextAttrUtils::CreateFontFamilyAttribute(UID family) const {
    return std::make_unique<FontFamilyAttribute>(family);
}

std::unique_ptr<ITextAttrFont> TextAttrUtils::CreateFontFaceAttribute(const PMString& face) const {
    return std::make_unique<FontFaceAttribute>(face);
}

std::unique_ptr<ICommand>
TextAttrUtils::BuildApplyTextAttrCmd(ITextModel* model, TextIndex start, int32 length,
                                     const ITextAttribute& attribute) const {
    auto* story = dynamic_cast<StoryTextModel*>(model);
    if (!story || start < 0 || length <= 0 || start + length > story->TotalLength())
        return nullptr;
    FontReference font;
    if (auto* family = dynamic_cast<const ITextAttrUID*>(&attribute)) {
        const DocumentFontFamily* known = story->document().families().family(family->GetUIDData());
        if (!known)
            return nullptr;
        font.family = known->name();
    } else if (auto* face = dynamic_cast<const ITextAttrFont*>(&attribute)) {
        if (face->GetFontName().IsEmpty())
            return nullptr;
        font.style = face->GetFontName().GetUTF8String();
    } else {
        return nullptr;
    }
    return std::make_unique<ApplyFontCommand>(*story, start, length, std::move(font));
}

} // namespace Galley
