#pragma once

#include "sdk/HostTypes.h"

class IFontFamily;
class ITextModel;

// A document's object store: objects are found by UID. Instantiate… returns null when the
// UID names no object of that kind.
class IDataBase {
public:
    virtual ~IDataBase() = default;
    virtual IFontFamily* InstantiateFontFamily(UID uid) = 0;
    virtual ITextModel* InstantiateTextModel(UID uid) = 0;
};
