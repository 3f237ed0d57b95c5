#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

#include <memory>

class ICommand;
class ITextAttribute;
class ITextAttrFont;
class ITextAttrUID;
class ITextModel;

// The host's text-attribute command utilities. Each Create/Build returns null when the
// object cannot be made (for example a range outside the story).
class ITextAttrUtils {
public:
    virtual ~ITextAttrUtils() = default;
    virtual std::unique_ptr<ITextAttrUID> CreateFontFamilyAttribute(UID family) const = 0;
    virtual std::unique_ptr<ITextAttrFont> CreateFontFaceAttribute(const PMString& face) const = 0;
    // A command that applies `attribute` to [start, start + length) of `model`'s text.
    virtual std::unique_ptr<ICommand>
    BuildApplyTextAttrCmd(ITextModel* model, TextIndex start, int32 length,
                          const ITextAttribute& attribute) const = 0;
};
