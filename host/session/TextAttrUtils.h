#pragma once

#include "sdk/ITextAttrUtils.h"

namespace Galley {

// Builds the attribute commands for Galley's documents.
class TextAttrUtils : public ITextAttrUtils {
public:
    std::unique_ptr<ITextAttrUID> CreateFontFamilyAttribute(UID family) const override;
    std::unique_ptr<ITextAttrFont> CreateFontFaceAttribute(const PMString& face) const override;
    std::unique_ptr<ICommand> BuildApplyTextAttrCmd(ITextModel* model, TextIndex start,
                                                    int32 length,
                                                    const ITextAttribute& attribute) const override;
};

} // namespace Galley
