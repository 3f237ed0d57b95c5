#pragma once

#include "sdk/HostTypes.h"

// The stories of a document, in the document's order. Each story is a text model in the
// document's database.
class IStoryList {
public:
    virtual ~IStoryList() = default;
    virtual int32 GetTextModelCount() const = 0;
    // kInvalidUID when `index` is out of range.
    virtual UID GetNthTextModelUID(int32 index) const = 0;
};
